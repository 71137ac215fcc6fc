#include "host/inps_VtuFile.h"
#include "base/utl_BlockSize.h"

#include "base/utl_Buffer.h"
#include "base/utl_OutputFile.h"
#include "base/utl_Threads.h"
#include "parser/inp_Utf8Text.h"
#include <algorithm>
#include <array>
#include <cstring>
#include <memory>

static_assert(std::endian::native == std::endian::little, "arrays are written as they lie");

namespace {

constexpr std::size_t bytesPerBlock = std::size_t{256} << 10;
constexpr std::size_t offsetDigits = 20;

// One thread's place for a block.
struct Slot {
  utl_Buffer<std::byte> raw;
  utl_Buffer<char> packed;
  std::unique_ptr<inps_VtuCompressor> compressor;
};

// The file, written front to back; what is only known later is put into its place at the end.
class VtuWriter {
public:
  VtuWriter(const std::filesystem::path& path, const inps_VtuGrid& grid,
            inps_VtuCompression compression)
      : m_file(path, utl_OutputFile::Mode::CreateNew), m_compression(compression),
        m_slots(utl_slotCount()) {
    WriteHead(grid);
    for (std::size_t i = 0; i < m_arrays.size(); ++i) WriteArray(*m_arrays[i], m_offsetPlaces[i]);
    Write("\n  </AppendedData>\n</VTKFile>\n");
    for (const Patch& patch : m_patches)
      m_file.WriteAt(patch.offset, patch.bytes.data(), patch.bytes.size());
    m_file.Close();
  }

private:
  struct Patch {
    std::uint64_t offset;
    cow_String bytes;
  };

  void Write(std::string_view bytes) {
    m_file.Write(bytes.data(), bytes.size());
    m_written += bytes.size();
  }

  void WriteHead(const inps_VtuGrid& grid) {
    m_head = "<?xml version=\"1.0\"?>\n"
             "<VTKFile type=\"UnstructuredGrid\" version=\"1.0\" byte_order=\"LittleEndian\""
             " header_type=\"UInt64\"";
    if (m_compression != inps_VtuCompression::None)
      m_head += " compressor=\"" + cow_String(inps_VtuCompressor::NameOf(m_compression)) + "\"";
    m_head += ">\n  <UnstructuredGrid>\n";
    Section("FieldData", grid.fieldData, "    ");
    m_head += "    <Piece NumberOfPoints=\"" + std::to_string(grid.points.items) +
              "\" NumberOfCells=\"" + std::to_string(grid.types.items) + "\">\n";
    Section("PointData", grid.pointData, "      ");
    Section("CellData", grid.cellData, "      ");
    const std::array<const inps_VtuArray*, 1> points{&grid.points};
    const std::array<const inps_VtuArray*, 3> cells{&grid.connectivity, &grid.offsets, &grid.types};
    Section("Points", points, "      ");
    Section("Cells", cells, "      ");
    m_head += "    </Piece>\n  </UnstructuredGrid>\n  <AppendedData encoding=\"raw\">\n   _";
    Write(m_head);
    m_dataBegin = m_written;
  }

  void Section(const char* name, const cow_List<inps_VtuArray>& arrays, const char* indent) {
    cow_List<const inps_VtuArray*> pointers;
    for (const inps_VtuArray& array : arrays) pointers.push_back(&array);
    Section(name, pointers, indent);
  }

  void Section(const cow_String& name, std::span<const inps_VtuArray* const> arrays,
               const cow_String& indent) {
    m_head += indent + "<" + name + ">\n";
    for (const inps_VtuArray* array : arrays) Declare(*array, indent + "  ");
    m_head += indent + "</" + name + ">\n";
  }

  void Declare(const inps_VtuArray& array, const cow_String& indent) {
    const bool isText = std::string_view(array.type) == "String";
    const char* element = isText ? "Array" : "DataArray";
    m_head += indent + "<" + element + " type=\"" + array.type + "\" Name=\"" +
              inps_xmlText(array.name) + "\"";
    if (isText)
      m_head += " NumberOfTuples=\"" + std::to_string(array.tuples) + "\"";
    else if (array.components > 1)
      m_head += " NumberOfComponents=\"" + std::to_string(array.components) + "\"";
    m_head += " format=\"appended\" offset=\"";
    m_arrays.push_back(&array);
    m_offsetPlaces.push_back(m_head.size());
    m_head += cow_String(offsetDigits, ' ') + " />\n"; // the closing quote comes with the number
  }

  // Plain arrays: their size in bytes, then the bytes. Compressed: a header of sizes, then the
  // blocks: how many, the size of all but the last, that of the last if it is another, and every
  // block's compressed size.
  void WriteArray(const inps_VtuArray& array, std::size_t offsetPlace) {
    m_patches.push_back({offsetPlace, std::to_string(m_written - m_dataBegin) + "\""});
    const std::size_t itemsPerBlock =
        std::max<std::size_t>(1, utl_blockSize(bytesPerBlock) / array.itemSize);
    const auto items = static_cast<std::size_t>(array.items);
    const std::size_t blocks = (items + itemsPerBlock - 1) / itemsPerBlock;
    const bool isPacked = m_compression != inps_VtuCompression::None;
    cow_List<std::uint64_t> sizes{items * array.itemSize};
    if (isPacked) {
      sizes.resize(3 + blocks);
      sizes[0] = blocks;
      sizes[1] = itemsPerBlock * array.itemSize;
      sizes[2] = items % itemsPerBlock * array.itemSize;
    }
    const std::uint64_t sizesAt = m_written;
    Write(BytesOf(sizes)); // compressed, a place for them
    utl_orderedBlocks(
        blocks,
        [&](std::size_t block, std::size_t number) {
          Slot& slot = SlotOf(number);
          const std::size_t first = block * itemsPerBlock;
          slot.raw.Resize(std::min(itemsPerBlock, items - first) * array.itemSize);
          array.fill(static_cast<int64_t>(first), slot.raw);
          if (isPacked) slot.compressor->Compress(slot.raw, slot.packed);
        },
        [&](std::size_t block, std::size_t number) {
          const Slot& slot = SlotOf(number);
          if (isPacked) sizes[3 + block] = slot.packed.Size();
          Write(isPacked ? std::string_view(slot.packed.Data(), slot.packed.Size())
                         : std::string_view(reinterpret_cast<const char*>(slot.raw.Data()),
                                            slot.raw.Size()));
        });
    if (isPacked) m_patches.push_back({sizesAt, cow_String(BytesOf(sizes))});
  }

  static std::string_view BytesOf(const cow_List<std::uint64_t>& words) {
    return {reinterpret_cast<const char*>(words.data()), words.size() * sizeof(std::uint64_t)};
  }

  Slot& SlotOf(std::size_t number) {
    std::unique_ptr<Slot>& slot = m_slots[number];
    if (!slot) {
      slot = std::make_unique<Slot>();
      slot->compressor = inps_VtuCompressor::Make(m_compression);
    }
    return *slot;
  }

  utl_OutputFile m_file;
  inps_VtuCompression m_compression;
  std::uint64_t m_written = 0;
  std::uint64_t m_dataBegin = 0;
  cow_String m_head;
  cow_List<const inps_VtuArray*> m_arrays; // as declared
  cow_List<std::size_t> m_offsetPlaces;
  cow_List<Patch> m_patches;
  cow_List<std::unique_ptr<Slot>> m_slots;
};

} // namespace

inps_VtuArray inps_vtuTexts(cow_String name, const cow_List<cow_String>& texts) {
  cow_String bytes;
  for (const cow_String& text : texts) bytes += text.substr(0, text.find('\0')) + '\0';
  const auto size = static_cast<int64_t>(bytes.size());
  inps_VtuArray array =
      inps_vtuArray<char>(std::move(name), "String", size,
                          [bytes = std::move(bytes)](int64_t first, std::span<char> out) {
                            std::copy_n(bytes.begin() + first, out.size(), out.begin());
                          });
  array.tuples = static_cast<int64_t>(texts.size());
  return array;
}

void inps_writeVtu(const std::filesystem::path& path, const inps_VtuGrid& grid,
                   inps_VtuCompression compression) {
  VtuWriter(path, grid, compression);
}

cow_String inps_xmlText(std::string_view text) {
  cow_String out;
  const char* const end = text.data() + text.size();
  for (const char* p = text.data(); p != end;) {
    const std::size_t length = inp_utf8CharLength(p, end);
    const std::string_view character(p, length);
    if (length == 0 || (length == 1 && static_cast<unsigned char>(*p) < ' '))
      out += '?';
    else if (character == "&")
      out += "&amp;";
    else if (character == "<")
      out += "&lt;";
    else if (character == ">")
      out += "&gt;";
    else if (character == "\"")
      out += "&quot;";
    else
      out += character;
    p += std::max<std::size_t>(1, length);
  }
  return out;
}
