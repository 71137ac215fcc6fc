#include "base/utl_FileUnderWay.h"
#include "base/utl_File.h"
#include "base/utl_SpinLock.h"

struct utl_FilesUnderWay {
  static inline utl_FileUnderWay* s_last = nullptr;
  static inline utl_SpinLock s_lock;

  static void Add(utl_FileUnderWay& file) noexcept {
    const utl_SpinLock::Scope scope(s_lock);
    file.m_before = s_last;
    if (s_last) s_last->m_after = &file;
    s_last = &file;
  }
  static void Remove(utl_FileUnderWay& file) noexcept {
    const utl_SpinLock::Scope scope(s_lock);
    (file.m_after ? file.m_after->m_before : s_last) = file.m_before;
    if (file.m_before) file.m_before->m_after = file.m_after;
  }
  static void RemoveAll() noexcept {
    s_lock.Lock();
    for (; s_last; s_last = s_last->m_before) utl_removeFile(s_last->m_name);
  }
};

utl_FileUnderWay::utl_FileUnderWay(const std::filesystem::path& name) noexcept : m_name(name) {
  utl_FilesUnderWay::Add(*this);
}

utl_FileUnderWay::~utl_FileUnderWay() {
  utl_FilesUnderWay::Remove(*this);
}

void utl_FileUnderWay::RemoveAll() noexcept {
  utl_FilesUnderWay::RemoveAll();
}
