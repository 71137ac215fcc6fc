#pragma once

#include "base/cow_Value.h"
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>

// A file's bytes as the system shows them in memory, and what comes of it when they cannot be shown
// any more: another program cut the file short, or its disk or network fails. The system tells it
// in the middle of an instruction, on whichever thread reads, and nobody can catch it: without
// utl_onMappingFailure the process ends by a signal.
struct utl_Mapping {
  // Null for what cannot be mapped: an empty file, a pipe, a device.
  static std::unique_ptr<utl_Mapping> Of(std::intptr_t handle, const std::filesystem::path& path);
  ~utl_Mapping();
  utl_Mapping(const utl_Mapping&) = delete;
  utl_Mapping& operator=(const utl_Mapping&) = delete;

  void Release(std::size_t offset, std::size_t length) const; // as utl_MappedFile has it

  bool IsAsItWas() const; // likewise

  const char* begin = nullptr;
  std::size_t size = 0;

private:
  friend struct utl_Mappings;
  explicit utl_Mapping(const std::filesystem::path& path);
  void Show(const char* data, std::size_t length) noexcept;

  std::filesystem::path m_path;
  cow_String m_name;          // as users know it
  std::uint64_t m_number = 0; // the system's, of the file; 0 where it has none
  utl_Mapping* m_before = nullptr;
  utl_Mapping* m_after = nullptr;
};

// Called in the place of the instruction that failed, as a signal handler is: it takes no memory
// and no lock, and does not come back. reason: "it was cut short while it was read".
using utl_MappingFailure = void (*)(const char* file, const char* reason) noexcept;

// For the whole process. Faults of any other memory go to whoever had them before.
void utl_onMappingFailure(utl_MappingFailure failure) noexcept;
