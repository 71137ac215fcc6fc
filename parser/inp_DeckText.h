#pragma once

#include "base/cow_Value.h"
#include "base/wip_Message.h"
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string_view>

class inp_DeckText;
using inp_DeckTextPtr = std::shared_ptr<const inp_DeckText>;

// The text of one deck file, mapped and never copied (unless its lines end by carriage returns
// alone, which are read as line feeds), or of a generated buffer. Keywords cut from
// it share it; lines and columns are counted only when a message asks for them.
class inp_DeckText {
public:
  // Throws utl_FileException when the file cannot be read.
  static inp_DeckTextPtr Open(const std::filesystem::path& path, inp_DeckTextPtr includedFrom = {},
                              long long includedAtLine = 0);
  // The same for a deck that messages call by another name than its path, and one that stands in
  // another folder than its file.
  static inp_DeckTextPtr OpenAs(const std::filesystem::path& path, cow_String name,
                                std::filesystem::path folder);
  static inp_DeckTextPtr FromString(cow_String text, cow_String name);
  // A rewritten stretch of another text: line n of it (from 0) is line firstLine + n of the file
  // the origin is or stems from.
  static inp_DeckTextPtr Rewritten(cow_String text, inp_DeckTextPtr origin, long long firstLine);

  ~inp_DeckText();

  const char* Begin() const; // behind a UTF-8 byte-order mark
  const char* End() const;
  std::size_t Size() const { return static_cast<std::size_t>(End() - Begin()); }

  const cow_String& FileName() const;        // as users know it, UTF-8
  const std::filesystem::path& Path() const; // empty for text that is no file
  const std::filesystem::path& Folder() const;

  // Whether the file it was read from still has the size it had: what is mapped of one that was cut
  // short reads as zeros up to the end of its page, and what is added to it is never seen.
  bool IsFileAsItWas() const;

  // Place of a character for a message: file, line, column, the line itself and the include chain.
  wip_Place PlaceOf(const char* at, int width = 1) const;
  // The same when the line's start and number (from 1) are known: nothing is counted.
  wip_Place PlaceInLine(const char* lineBegin, const char* at, int width, long long line) const;
  // The same for a whole line whose number is known already.
  wip_Place PlaceOfLine(long long line) const;

  // Pages that nobody needs for now may leave memory; they come back by themselves when touched.
  void Release(const char* begin, const char* end) const;

private:
  struct Impl;
  explicit inp_DeckText(std::unique_ptr<Impl> impl);
  wip_Place PlaceInOrigin(const char* lineBegin, const char* at, int width, long long line) const;
  std::unique_ptr<Impl> m_impl;
};
