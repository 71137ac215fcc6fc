#pragma once

#include "parser/inp_Keyword.h"

// Reads a deck, its include files and the data files it names into the list of its keywords.
class inp_Parser {
public:
  // inputPath: the deck (UTF-8). directory: where relative include paths are looked for after the
  // including file's own folder. searchPaths: further folders. jobName: shown instead of the path
  // in messages when not empty, and the deck's own folder is the current one. Without
  // followIncludes *INCLUDE stays in the list as a keyword; with keepComments the comment lines
  // right above a keyword are kept in its body.
  inp_Parser(cow_String inputPath, cow_String directory, cow_List<cow_String> searchPaths,
             cow_String jobName, bool followIncludes, bool attachSuboptions, bool keepComments);
  ~inp_Parser();

  // The keywords in deck order; expectFile false reads inputPath as the deck's text itself.
  inp_KeywordList Parse(bool expectFile);

  const cow_List<wip_Message>& FileErrors() const;   // files that cannot be read, include cycles
  const cow_List<wip_Message>& SyntaxErrors() const; // lines that are no deck language
  const cow_List<wip_Message>& Slips() const;        // errors that are mended: the deck goes on
  const cow_List<wip_Message>& Warnings() const;
  // Every file that was opened, once for each name: the deck, includes, data files.
  const cow_List<inp_DeckTextPtr>& Files() const;
  // Files that are there and that parameters name, but that nobody opened: their keywords are kept
  // as they stand.
  const cow_List<std::filesystem::path>& NamedFiles() const;

private:
  struct Impl;
  std::unique_ptr<Impl> m_impl;
};
