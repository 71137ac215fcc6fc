#pragma once

#include "database/KvoSimContext.h"

// Gathers the changes of one keyword and writes them as a whole. A transaction opened inside
// another belongs to it: what it commits becomes physical with the outermost.
//
// The engine gathers the commits of a few milliseconds into one physical commit, always whole
// transactions in order. A transaction that is destroyed uncommitted (an exception passes through)
// takes back everything changed since its outermost began; handles of what was made meanwhile name
// nothing then, and labelers are read anew. Changes made outside any transaction go with the next.
class KvoSimTransaction {
public:
  explicit KvoSimTransaction(KvoSimContextID context);
  explicit KvoSimTransaction(const KvoSimContext& context) : KvoSimTransaction(context.ID()) {}
  ~KvoSimTransaction();
  KvoSimTransaction(const KvoSimTransaction&) = delete;
  KvoSimTransaction& operator=(const KvoSimTransaction&) = delete;

  void Commit();
  KvoSimContextID ContextID() const { return {m_store}; }

private:
  eds_Store* m_store;
  bool m_open = true;
};
