#pragma once

#include "base/utl_Buffer.h"
#include <cstddef>
#include <memory>
#include <span>
#include <string_view>

// What VTK reads: lz4 is fast, zlib gives smaller files, none gives arrays that lie plainly.
enum class inps_VtuCompression : unsigned char { Lz4, Zlib, None };

inline constexpr std::string_view inps_vtuCompressionNames[] = {"lz4", "zlib", "none"};

// Compresses blocks, each on its own; keeps its memory from block to block. For one thread.
class inps_VtuCompressor {
public:
  // Null for None.
  static std::unique_ptr<inps_VtuCompressor> Make(inps_VtuCompression compression);
  // As VTK names it in a file's head; empty for None.
  static std::string_view NameOf(inps_VtuCompression compression);

  virtual ~inps_VtuCompressor() = default;
  // `out` becomes the block compressed; throws std::bad_alloc. A block has less than 2 GB.
  virtual void Compress(std::span<const std::byte> in, utl_Buffer<char>& out) = 0;
};
