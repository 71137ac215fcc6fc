#include "database/KvoSimTransaction.h"
#include "base/utl_Assert.h"
#include "database/engine/eds_Store.h"
#include <exception>

KvoSimTransaction::KvoSimTransaction(KvoSimContextID context) : m_store(context.store) {
  utl_ASSERT(m_store != nullptr && !m_store->IsReadOnly());
  m_store->Begin();
}

KvoSimTransaction::~KvoSimTransaction() {
  if (!m_open || !m_store->InTransaction()) return;
  try {
    m_store->Abandon();
  } catch (const std::exception&) { // of the engine, or for lack of memory
    // Taking back failed too; nothing more is written, and the file rolls back when it closes.
    m_store->Engine().MarkFailed();
  }
}

void KvoSimTransaction::Commit() {
  utl_ASSERT(m_open);
  m_open = false;
  m_store->Commit();
}
