#pragma once

#include "base/cow_Value.h"
#include "base/wip_Message.h"
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string_view>

class inp_DeckText;
using inp_DeckTextPtr = std::shared_ptr<const inp_DeckText>;

// The text of one deck file, mapped and never copied, or of a generated buffer. Keywords cut from it
// share it; lines and columns are counted only when a message asks for them.
class inp_DeckText {
public:
  // Throws utl_FileException when the file cannot be read.
  static inp_DeckTextPtr Open(const std::filesystem::path& path, inp_DeckTextPtr includedFrom = {},
                              long long includedAtLine = 0);
  static inp_DeckTextPtr FromString(cow_String text, cow_String name);
  // A rewritten stretch of another text: line n of it is line firstLine + n of the origin.
  static inp_DeckTextPtr Rewritten(cow_String text, inp_DeckTextPtr origin, long long firstLine);

  ~inp_DeckText();

  const char* Begin() const;
  const char* End() const;
  std::size_t Size() const { return static_cast<std::size_t>(End() - Begin()); }

  const cow_String& FileName() const; // as users know it, UTF-8
  const std::filesystem::path& Folder() const;

  // Place of a character for a message: file, line, column, the line itself and the include chain.
  wip_Place PlaceOf(const char* at, int width = 1) const;
  // The same for a whole line whose number is known already.
  wip_Place PlaceOfLine(long long line) const;

  // Pages that nobody needs for now may leave memory; they come back by themselves when touched.
  void Release(const char* begin, const char* end) const;

private:
  struct Impl;
  explicit inp_DeckText(std::unique_ptr<Impl> impl);
  std::unique_ptr<Impl> m_impl;
};
