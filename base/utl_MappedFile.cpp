#include "base/utl_MappedFile.h"
#include "base/utl_File.h"
#include "base/utl_FileCalls.h"
#include "base/utl_Mapping.h"

#include <utility>

namespace fs = std::filesystem;

namespace {

// Closes a handle at the end of a scope; what fails then does not matter to a reader.
struct HandleScope {
  utl_fileCalls::Handle handle;
  ~HandleScope() { utl_fileCalls::close(handle); }
};

[[noreturn]] void fail(const fs::path& path) {
  throw utl_FileException("cannot read", path, utl_fileCalls::lastFailure());
}

utl_Buffer<char> readToEnd(utl_fileCalls::Handle handle, const fs::path& path) {
  constexpr std::size_t step = std::size_t{64} << 10;
  utl_Buffer<char> content;
  while (true) {
    const std::size_t before = content.Size();
    const std::ptrdiff_t done = utl_fileCalls::readSome(handle, content.AppendSpace(step), step);
    if (done < 0) fail(path);
    content.Resize(before + static_cast<std::size_t>(done));
    if (done == 0) return content;
  }
}

} // namespace

utl_MappedFile::utl_MappedFile() = default;
utl_MappedFile::~utl_MappedFile() = default;

utl_MappedFile::utl_MappedFile(const fs::path& path) : m_path(path) {
  if (utl_isDirectory(path)) throw utl_FileException("cannot read", path, "it is a folder");
  const utl_fileCalls::Handle handle = utl_fileCalls::openToRead(path);
  if (handle == utl_fileCalls::noHandle) fail(path);
  const HandleScope scope{handle};
  m_mapping = utl_Mapping::Of(handle, path);
  if (m_mapping) {
    m_data = m_mapping->begin;
    m_size = m_mapping->size;
    return;
  }
  m_copy = readToEnd(handle, path);
  m_size = m_copy.Size();
  if (m_size > 0) m_data = m_copy.Data();
}

utl_MappedFile::utl_MappedFile(utl_MappedFile&& other) noexcept
    : m_path(std::move(other.m_path)), m_data(std::exchange(other.m_data, "")),
      m_size(std::exchange(other.m_size, 0)), m_mapping(std::move(other.m_mapping)),
      m_copy(std::move(other.m_copy)) {}

utl_MappedFile& utl_MappedFile::operator=(utl_MappedFile&& other) noexcept {
  utl_MappedFile taken(std::move(other));
  std::swap(m_path, taken.m_path);
  std::swap(m_data, taken.m_data);
  std::swap(m_size, taken.m_size);
  std::swap(m_mapping, taken.m_mapping);
  m_copy.Swap(taken.m_copy);
  return *this;
}

void utl_MappedFile::Release(std::size_t offset, std::size_t length) const {
  if (m_mapping) m_mapping->Release(offset, length);
}

bool utl_MappedFile::IsAsItWas() const {
  return !m_mapping || m_mapping->IsAsItWas();
}
