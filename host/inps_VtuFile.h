#pragma once

#include "base/cow_Value.h"
#include "host/inps_VtuCompressor.h"
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>

// One array of a VTK XML file. Its values are asked for by the piece and from any thread.
struct inps_VtuArray {
  cow_String name;
  const char* type = "Int32"; // VTK's name; "String": bytes of texts with a zero byte behind each
  int components = 1;
  std::size_t itemSize = 4; // bytes of all components
  int64_t items = 0;
  std::function<void(int64_t first, std::span<std::byte> out)> fill; // whole items
  int64_t tuples = 0;                                                // of a String: how many texts
};

// An array of single values whose pieces are written by fill(first, std::span<T>).
template <class T, class Fill>
inps_VtuArray inps_vtuArray(cow_String name, const char* type, int64_t items, Fill fill,
                            int components = 1) {
  inps_VtuArray array{std::move(name), type, components, sizeof(T) * std::size_t(components),
                      items,           {},   0};
  array.fill = [fill = std::move(fill)](int64_t first, std::span<std::byte> out) {
    fill(first, std::span(reinterpret_cast<T*>(out.data()), out.size() / sizeof(T)));
  };
  return array;
}
inps_VtuArray inps_vtuTexts(cow_String name, const cow_List<cow_String>& texts);

// An unstructured grid: points and cells with their data.
struct inps_VtuGrid {
  inps_VtuArray points;       // Float64, 3 components
  inps_VtuArray connectivity; // points of the cells, one after the other
  inps_VtuArray offsets;      // behind each cell's last one
  inps_VtuArray types;        // UInt8
  cow_List<inps_VtuArray> pointData;
  cow_List<inps_VtuArray> cellData;
  cow_List<inps_VtuArray> fieldData;
};

// Writes the file (an existing one is replaced) as VTK XML with appended raw data: blocks of some
// 256 KiB, each compressed on its own, on all threads. Holds a few blocks in memory.
void inps_writeVtu(const std::filesystem::path& path, const inps_VtuGrid& grid,
                   inps_VtuCompression compression);

// A text as the value of an XML attribute; what XML cannot hold becomes "?".
cow_String inps_xmlText(std::string_view text);
