#include "base/utl_OutputFile.h"
#include "base/utl_File.h"
#include "base/utl_FileCalls.h"

#include <utility>

namespace fs = std::filesystem;
namespace calls = utl_fileCalls;

namespace {

[[noreturn]] void fail(const char* action, const fs::path& path) {
  throw utl_FileException(action, path, calls::lastFailure());
}

} // namespace

utl_OutputFile::utl_OutputFile(const fs::path& path, Mode mode)
    : m_path(path), m_handle(calls::openToWrite(path, mode == Mode::CreateNew)) {
  if (m_handle == closedHandle) fail("cannot create", path);
}

utl_OutputFile::~utl_OutputFile() {
  if (IsOpen()) calls::close(m_handle);
}

utl_OutputFile::utl_OutputFile(utl_OutputFile&& other) noexcept
    : m_path(std::move(other.m_path)), m_handle(std::exchange(other.m_handle, closedHandle)) {}

utl_OutputFile& utl_OutputFile::operator=(utl_OutputFile&& other) noexcept {
  utl_OutputFile taken(std::move(other));
  std::swap(m_path, taken.m_path);
  std::swap(m_handle, taken.m_handle);
  return *this;
}

void utl_OutputFile::Write(const void* data, std::size_t size) {
  const char* p = static_cast<const char*>(data);
  while (size > 0) {
    const std::ptrdiff_t done = calls::writeSome(m_handle, p, size);
    if (done < 0) fail("cannot write", m_path);
    p += done;
    size -= static_cast<std::size_t>(done);
  }
}

void utl_OutputFile::WriteAt(std::uint64_t offset, const void* data, std::size_t size) {
  const char* p = static_cast<const char*>(data);
  while (size > 0) {
    const std::ptrdiff_t done = calls::writeSomeAt(m_handle, offset, p, size);
    if (done < 0) fail("cannot write", m_path);
    p += done;
    offset += static_cast<std::uint64_t>(done);
    size -= static_cast<std::size_t>(done);
  }
}

void utl_OutputFile::Sync() {
  if (!calls::sync(m_handle)) fail("cannot write", m_path);
}

void utl_OutputFile::Close() {
  if (!IsOpen()) return;
  if (!calls::close(std::exchange(m_handle, closedHandle))) fail("cannot write", m_path);
}
