#include "parser/inp_Parser.h"
#include "base/utl_File.h"
#include "parser/inp_IncludeFinder.h"
#include "parser/inp_KeywordReader.h"
#include "parser/inp_KeywordTable.h"
#include "parser/inp_MessageList.h"
#include "parser/inp_ParametersSoFar.h"
#include "parser/inp_ScopeTracker.h"
#include "parser/inp_Structure.h"
#include "parser/inp_SuboptionChain.h"
#include "parser/inp_TextLines.h"
#include "parser/inp_Utf8Text.h"
#include "parser/inp_Utils.h"
#include <algorithm>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr std::size_t deepestInclude = 100;
constexpr std::ptrdiff_t releaseStep = 8 * 1024 * 1024;
constexpr int mostIncludes = 100000; // files in all: a few nested includes can name millions

cow_String nameOf(const fs::path& path) {
  return '"' + inp_printable(utl_pathText(path), 1000) + '"';
}

fs::path identityOf(const fs::path& path) {
  std::error_code error;
  fs::path canonical = fs::weakly_canonical(path, error);
  return error ? path : canonical;
}

// "part": what *PART opens and *END PART ends.
cow_String scopeWord(inp_KeywordEnm keyword) {
  cow_String word(inp_KeywordTable::Instance().Row(keyword)->name);
  if (inp_ScopeTracker::IsCloser(keyword)) word.erase(0, word.find(' ') + 1);
  for (char& c : word) c = static_cast<char>(c - 'A' + 'a');
  return word;
}

// Of a scope that lacks its end; before: what cannot stand within it, or null at the deck's end.
cow_String whereBefore(const inp_KeywordBody& opener, const inp_KeywordBody* before) {
  if (!before) return "with the deck";
  if (before->kind == opener.kind) return "where the next one begins";
  const bool isEnd = inp_ScopeTracker::IsCloser(before->kind);
  return "where *" + before->name + (isEnd ? " stands" : " begins");
}

bool isUtf16(const inp_DeckText& text) {
  const std::string_view begin(text.Begin(), std::min<std::size_t>(text.Size(), 2));
  return begin == "\xFF\xFE" || begin == "\xFE\xFF";
}

} // namespace

struct inp_Parser::Impl {
  cow_String inputPath;
  inp_IncludeFinder finder;
  cow_String jobName;
  bool followIncludes;
  bool attachSuboptions;
  bool keepComments;

  cow_List<wip_Message> fileErrors{};
  cow_List<wip_Message> syntaxErrors{};
  cow_List<wip_Message> slips{};
  cow_List<wip_Message> warnings{};
  long long moreErrors = 0; // beyond the limit of their list
  long long moreSlips = 0;
  long long moreWarnings = 0;

  inp_KeywordReader reader{syntaxErrors, warnings};
  inp_ScopeTracker scopes{};
  inp_SuboptionChain chain{};
  inp_KeywordList keywords{};

  // The keyword whose data lines are being gathered, through all files.
  std::shared_ptr<inp_KeywordBody> open{};
  bool isLeftOut = false; // it is in no list
  cow_List<inp_DataSegment> segments{};

  inp_ParametersSoFar parameters{};
  cow_List<fs::path> reading{}; // the chain of files being read
  int includes = 0;
  cow_List<inp_DeckTextPtr> files{};
  std::unordered_set<fs::path::string_type> fileNames{};
  cow_List<fs::path> namedFiles{};
  fs::path rootFolder{};

  void Opened(const inp_DeckTextPtr& text) {
    if (fileNames.insert(text->Path().native()).second) files.push_back(text);
  }

  void ParseText(const inp_DeckTextPtr& text);
  void ParseKeyword(const inp_DeckTextPtr& text, const inp_Structure& found, std::size_t mark);
  void AddData(const inp_DeckTextPtr& text, const inp_Structure& found, std::size_t nextMark,
               const char* begin, long long line, long long commentsBefore);
  void AddSegment(inp_DataSegment segment, long long lines, long long comments);
  void ReportUnread(const inp_DeckText& text, const inp_UnreadText& unread);
  void KeepComments(const inp_DeckText& text, inp_KeywordBody& body) const;
  void Begin(const std::shared_ptr<inp_KeywordBody>& body);
  void End();
  void TellLeftOut(const inp_KeywordBody& body);
  void TellNestedPart(const inp_KeywordBody& body);
  void EndInPlace(const inp_ScopeTracker::Open& scope, const inp_KeywordBody* before);
  void LimitMessages();
  void TellMore();
  void ReportHeadless(const inp_DataSegment& segment);
  void Include(const inp_KeywordBody& include);
  void TakeDataFile(inp_KeywordBody& body);
  void NoteNamedFile(const inp_KeywordBody& body, const inp_Parameter& parameter);
  void ReadDataFile(const inp_DeckTextPtr& text);
  inp_DeckTextPtr OpenNamed(const inp_KeywordBody& body, const inp_Parameter& parameter);
  bool IsReadable(const inp_DeckText& text, const inp_Structure& found);
  void FileError(const inp_KeywordBody& body, const inp_Parameter& parameter, cow_String text,
                 cow_List<wip_Note> notes = {});
  inp_DeckTextPtr OpenRoot(bool expectFile);
  bool MayInclude(const fs::path& path, const inp_KeywordBody& body,
                  const inp_Parameter& parameter);
};

inp_Parser::inp_Parser(cow_String inputPath, cow_String directory, cow_List<cow_String> searchPaths,
                       cow_String jobName, bool followIncludes, bool attachSuboptions,
                       bool keepComments)
    : m_impl(new Impl{.inputPath = std::move(inputPath),
                      .finder = inp_IncludeFinder(directory, searchPaths),
                      .jobName = std::move(jobName),
                      .followIncludes = followIncludes,
                      .attachSuboptions = attachSuboptions,
                      .keepComments = keepComments}) {}

inp_Parser::~inp_Parser() = default;

const cow_List<wip_Message>& inp_Parser::FileErrors() const {
  return m_impl->fileErrors;
}
const cow_List<wip_Message>& inp_Parser::Slips() const {
  return m_impl->slips;
}
const cow_List<wip_Message>& inp_Parser::SyntaxErrors() const {
  return m_impl->syntaxErrors;
}
const cow_List<wip_Message>& inp_Parser::Warnings() const {
  return m_impl->warnings;
}

const cow_List<inp_DeckTextPtr>& inp_Parser::Files() const {
  return m_impl->files;
}

const cow_List<fs::path>& inp_Parser::NamedFiles() const {
  return m_impl->namedFiles;
}

inp_KeywordList inp_Parser::Parse(bool expectFile) {
  const inp_DeckTextPtr root = m_impl->OpenRoot(expectFile);
  if (!root) return {};
  m_impl->ParseText(root);
  m_impl->End();
  while (const auto* scope = m_impl->scopes.Innermost()) m_impl->EndInPlace(*scope, nullptr);
  m_impl->TellMore();
  const bool nothingSaid = m_impl->fileErrors.empty() && m_impl->syntaxErrors.empty();
  if (m_impl->keywords.empty() && nothingSaid) {
    wip_Message message("the deck holds no keyword");
    message.place.file = root->FileName();
    m_impl->syntaxErrors.push_back(std::move(message));
  }
  return std::move(m_impl->keywords);
}

inp_DeckTextPtr inp_Parser::Impl::OpenRoot(bool expectFile) {
  if (!expectFile) return inp_DeckText::FromString(inputPath, jobName.empty() ? "deck" : jobName);
  const fs::path path = utl_pathOf(inputPath);
  // A file of another name only holds what came from elsewhere: nothing is looked for beside it.
  const bool isStandIn = !jobName.empty();
  try {
    inp_DeckTextPtr text = inp_DeckText::OpenAs(path, isStandIn ? jobName : inputPath,
                                                isStandIn ? fs::path() : path.parent_path());
    reading.push_back(identityOf(path));
    rootFolder = text->Folder();
    Opened(text);
    return text;
  } catch (const utl_FileException& failure) {
    wip_Message message(isStandIn ? "cannot read \"" + jobName + "\": " + failure.Reason()
                                  : cow_String(failure.what()));
    message.place.file = isStandIn ? jobName : inputPath;
    fileErrors.push_back(std::move(message));
    return nullptr;
  }
}

void inp_Parser::Impl::LimitMessages() {
  const auto cut = [](cow_List<wip_Message>& messages, long long& more) {
    if (messages.size() <= inp_MessageList::limit) return;
    more += static_cast<long long>(messages.size() - inp_MessageList::limit);
    messages.resize(inp_MessageList::limit);
  };
  cut(syntaxErrors, moreErrors);
  cut(slips, moreSlips);
  cut(warnings, moreWarnings);
}

void inp_Parser::Impl::TellMore() {
  LimitMessages();
  if (moreErrors > 0) syntaxErrors.push_back(inp_MessageList::More(moreErrors));
  if (moreSlips > 0) slips.push_back(inp_MessageList::More(moreSlips));
  if (moreWarnings > 0) warnings.push_back(inp_MessageList::More(moreWarnings));
}

void inp_Parser::Impl::ParseText(const inp_DeckTextPtr& text) {
  const inp_Structure found = inp_findStructure(*text);
  if (!IsReadable(*text, found)) return;
  AddData(text, found, 0, text->Begin(), 0, 0);
  const char* kept = text->Begin();
  for (std::size_t i = 0; i < found.marks.size(); ++i) {
    ParseKeyword(text, found, i);
    if (found.marks[i].at - kept < releaseStep) continue;
    text->Release(kept, found.marks[i].at);
    kept = found.marks[i].at;
  }
}

bool inp_Parser::Impl::IsReadable(const inp_DeckText& text, const inp_Structure& found) {
  wip_Message message;
  if (isUtf16(text)) {
    message.text = "the file is UTF-16 text; decks are read as UTF-8 or plain text: save it so";
    message.place.file = text.FileName();
  } else if (found.nul) {
    message.place = text.PlaceOf(found.nul);
    message.place.sourceLine.clear();
    message.text = "this is not a deck: binary data at line " + std::to_string(message.place.line);
  } else {
    return true;
  }
  fileErrors.push_back(std::move(message));
  return false;
}

void inp_Parser::Impl::ParseKeyword(const inp_DeckTextPtr& text, const inp_Structure& found,
                                    std::size_t mark) {
  const inp_KeywordMark& at = found.marks[mark];
  const inp_KeywordReader::Result read = reader.Read(text, at.at, at.line + 1);
  LimitMessages();
  if (read.body->kind == inp_KwInclude && followIncludes) {
    Include(*read.body);
  } else {
    End();
    Begin(read.body);
  }
  AddData(text, found, mark + 1, read.next, at.line + read.lines,
          at.commentsBefore + read.comments);
}

// The lines from begin to the next keyword belong to the keyword that is open, wherever it stands;
// what is not to be read is left out. line counts from 0.
void inp_Parser::Impl::AddData(const inp_DeckTextPtr& text, const inp_Structure& found,
                               std::size_t nextMark, const char* begin, long long line,
                               long long commentsBefore) {
  const inp_KeywordMark* next = nextMark < found.marks.size() ? &found.marks[nextMark] : nullptr;
  inp_DataSegment segment;
  segment.text = text;
  segment.ascii = nextMark == 0 ? found.ascii : found.marks[nextMark - 1].ascii;
  const char* const end = next ? inp_lineBegin(next->at, text->Begin()) : text->End();
  auto cut = std::lower_bound(
      found.unread.begin(), found.unread.end(), begin,
      [](const inp_UnreadText& unread, const char* from) { return unread.begin < from; });
  for (; cut != found.unread.end() && cut->begin < end; ++cut) {
    segment.begin = begin;
    segment.end = cut->begin;
    segment.firstLine = line + 1;
    AddSegment(segment, cut->line - line, cut->commentsBefore - commentsBefore);
    ReportUnread(*text, *cut);
    begin = cut->end;
    line = cut->line + cut->lines;
    commentsBefore = cut->commentsBefore + cut->comments;
  }
  segment.begin = begin;
  segment.end = end;
  segment.firstLine = line + 1;
  AddSegment(std::move(segment), (next ? next->line : found.lines) - line,
             (next ? next->commentsBefore : found.comments) - commentsBefore);
}

// lines and comments: how many there are in the segment.
void inp_Parser::Impl::AddSegment(inp_DataSegment segment, long long lines, long long comments) {
  if (lines <= comments) return;
  segment.rows = lines - comments;
  if (open)
    segments.push_back(std::move(segment));
  else
    ReportHeadless(segment);
}

void inp_Parser::Impl::ReportUnread(const inp_DeckText& text, const inp_UnreadText& unread) {
  using Kind = inp_UnreadText::Kind;
  if (unread.kind == Kind::LongComment) return;
  const bool isBlank = unread.kind == Kind::BlankLines;
  wip_Message message;
  message.text =
      isBlank ? std::to_string(unread.lines) + " blank lines one after another, which are left out"
              : "a data line of " + std::to_string(unread.size) +
                    " bytes, which is not read; a data line may have " +
                    std::to_string(inp_longestDataLine);
  if (open) message.keyword = inp_printable(open->name, 80);
  message.place = text.PlaceInLine(unread.begin, unread.begin, 1, unread.line + 1);
  (isBlank ? warnings : syntaxErrors).push_back(std::move(message));
}

// Blank lines may stand before the first keyword; anything else there belongs to nothing.
void inp_Parser::Impl::ReportHeadless(const inp_DataSegment& segment) {
  const inp_DataArray lines({segment});
  for (long long row = 0; row < lines.Rows(); ++row) {
    if (lines.Cols(row) == 0) continue;
    wip_Message message("a data line before the first keyword; it and those behind it up to the "
                        "next keyword are not read");
    message.place = lines.PlaceOfRow(row);
    syntaxErrors.push_back(std::move(message));
    return;
  }
}

void inp_Parser::Impl::Begin(const std::shared_ptr<inp_KeywordBody>& body) {
  while (const auto* scope = scopes.MustEndBefore(body->kind)) EndInPlace(*scope, body.get());
  open = body;
  if (body->name.empty()) return; // reported; its data lines go with it
  if (inp_ScopeTracker::IsCloser(body->kind) && !scopes.IsOpenFor(body->kind))
    return void(isLeftOut = true);
  if (body->kind == inp_KwPart && scopes.Innermost()) TellNestedPart(*body);
  if (keepComments) KeepComments(*body->text, *body);
  const inp_ScopePtr scope = scopes.Enter(body);
  keywords.emplace_back(body, scope);
  if (attachSuboptions) chain.Attach(keywords.back());
  TakeDataFile(*body);
}

void inp_Parser::Impl::End() {
  if (open) {
    const inp_KeywordRow* row = inp_KeywordTable::Instance().Row(open->kind);
    const bool wholeLines = row && row->data == inp_DataKind::Verbatim;
    open->data = inp_DataArray(std::exchange(segments, {}), wholeLines);
    if (std::exchange(isLeftOut, false)) TellLeftOut(*open);
  }
  open = nullptr;
}

// One end too many ends nothing. Of a file that could not be read it may end a scope.
void inp_Parser::Impl::TellLeftOut(const inp_KeywordBody& body) {
  if (!fileErrors.empty()) return;
  wip_Message message("no " + scopeWord(body.kind) + " is open that *" + body.name +
                      " could end; it is left out" +
                      (body.data.Rows() > 0 ? ", and its data lines with it" : ""));
  message.keyword = body.name;
  message.place = body.text->PlaceOf(body.begin);
  slips.push_back(std::move(message));
}

void inp_Parser::Impl::TellNestedPart(const inp_KeywordBody& body) {
  if (!fileErrors.empty()) return;
  wip_Message message(
      "a part cannot stand within the assembly; it is read as if it stood before it");
  message.keyword = body.name;
  message.place = body.text->PlaceOf(body.begin);
  slips.push_back(std::move(message));
}

// Where *END PART is wanted the deck goes on as if it stood there. Decks may end within their last
// step, which then ends with them, and a step may be left open where the next one begins; all else
// is an error. Where a file could not be read it may be the line that ends the scope.
void inp_Parser::Impl::EndInPlace(const inp_ScopeTracker::Open& scope,
                                  const inp_KeywordBody* before) {
  const auto opener = scope.opener;
  const cow_String closer = cow_String(inp_KeywordTable::Instance().Row(scope.closer)->name);
  if (fileErrors.empty()) {
    const cow_String& name = scope.scope->name;
    const bool isStep = opener->kind == inp_KwStep;
    const bool isUsual = isStep && (!before || before->kind == inp_KwStep);
    cow_String text = "*" + closer + " is missing";
    if (!name.empty() && !isStep) text += " for \"" + inp_printable(name, 80) + '"';
    text += "; the " + scopeWord(opener->kind) + " ends " + whereBefore(*opener, before);
    wip_Message message = inp_Utils::MessageInKeyword(inp_Keyword(opener, {}), text);
    if (before && !isUsual)
      message.notes.push_back(
          {"it must stand before this *" + before->name, before->text->PlaceOf(before->begin)});
    (isUsual ? warnings : slips).push_back(std::move(message));
  }
  const inp_DeckTextPtr text =
      inp_DeckText::Rewritten("*" + closer + "\n", opener->text, opener->line);
  Begin(reader.Read(text, text->Begin(), opener->line).body);
  End();
}

// The comment lines right above the keyword line.
void inp_Parser::Impl::KeepComments(const inp_DeckText& text, inp_KeywordBody& body) const {
  const char* line = inp_lineBegin(body.begin, text.Begin());
  while (line != text.Begin()) {
    const char* const feed = line - 1;
    line = inp_lineBegin(feed, text.Begin());
    if (inp_lineKind(line, feed) != inp_LineKind::Comment) break;
    body.comments.insert(body.comments.begin(), cow_String(inp_trim(line, feed)));
  }
}

void inp_Parser::Impl::FileError(const inp_KeywordBody& body, const inp_Parameter& parameter,
                                 cow_String text, cow_List<wip_Note> notes) {
  wip_Message message(std::move(text));
  message.keyword = body.name;
  const long long line = body.line + std::count(body.begin, parameter.at, '\n');
  message.place = body.text->PlaceInLine(inp_lineBegin(parameter.at, body.text->Begin()),
                                         parameter.at, parameter.width, line);
  message.notes = std::move(notes);
  fileErrors.push_back(std::move(message));
}

bool inp_Parser::Impl::MayInclude(const fs::path& path, const inp_KeywordBody& body,
                                  const inp_Parameter& parameter) {
  if (std::find(reading.begin(), reading.end(), identityOf(path)) != reading.end()) {
    FileError(body, parameter,
              "the file " + nameOf(path) + " includes itself; it is not read again");
    return false;
  }
  if (reading.size() > deepestInclude) {
    FileError(body, parameter,
              "includes are nested deeper than " + std::to_string(deepestInclude) + " files; " +
                  nameOf(path) + " is not read");
    return false;
  }
  if (includes++ < mostIncludes) return true;
  if (includes == mostIncludes + 1)
    FileError(body, parameter,
              "more than " + std::to_string(mostIncludes) + " includes; the rest is not read");
  return false;
}

// Opens the file a parameter names, or says why not.
inp_DeckTextPtr inp_Parser::Impl::OpenNamed(const inp_KeywordBody& body,
                                            const inp_Parameter& parameter) {
  cow_List<wip_Message> unknown;
  const cow_String name =
      parameters.FileName(keywords, open.get(), segments, body, parameter, unknown);
  // Other keywords stay in the list, and expansion tells what theirs do not know.
  if (body.kind == inp_KwInclude)
    for (wip_Message& message : unknown) FileError(body, parameter, std::move(message.text));
  if (!unknown.empty()) return nullptr;
  if (name.empty()) {
    FileError(body, parameter, "the name of the file is missing");
    return nullptr;
  }
  cow_List<cow_String> tried;
  const fs::path path = finder.Find(name, body.text->Folder(), tried);
  if (path.empty()) {
    const cow_String where = inp_Utils::MessageWithItems("looked for in:", tried);
    FileError(body, parameter, "there is no file " + nameOf(utl_pathOf(name)), {{where, {}}});
    return nullptr;
  }
  if (!MayInclude(path, body, parameter)) return nullptr;
  // A pipe may never come to its end, and a device has none. A folder is told when it is opened.
  std::error_code unknownKind;
  if (!fs::is_regular_file(path, unknownKind) && !unknownKind && !utl_isDirectory(path)) {
    FileError(body, parameter,
              "cannot read " + nameOf(path) +
                  ": it is a pipe or a device; only files are included");
    return nullptr;
  }
  try {
    const long long line = body.line + std::count(body.begin, parameter.at, '\n');
    inp_DeckTextPtr text = inp_DeckText::Open(path, body.text, line);
    Opened(text);
    return text;
  } catch (const utl_FileException& failure) {
    FileError(body, parameter, failure.what());
    return nullptr;
  }
}

// What an include file holds stands in the place of the *INCLUDE: it may begin with data lines of
// the keyword before, and its last keyword goes on behind it.
void inp_Parser::Impl::Include(const inp_KeywordBody& include) {
  for (const inp_Parameter& parameter : include.parameters) {
    if (parameter.name != "input") continue;
    const inp_DeckTextPtr text = OpenNamed(include, parameter);
    if (!text) return;
    reading.push_back(identityOf(text->Path()));
    ParseText(text);
    reading.pop_back();
    return;
  }
  fileErrors.push_back(inp_Utils::MessageInKeyword(
      inp_Keyword(std::make_shared<inp_KeywordBody>(include), {}), "INPUT is missing: what file?"));
}

void inp_Parser::Impl::TakeDataFile(inp_KeywordBody& body) {
  const int dataFile = inp_KeywordReader::DataFileOf(body);
  for (std::size_t i = 0; i < body.parameters.size(); ++i) {
    const inp_Parameter& parameter = body.parameters[i];
    if (parameter.value.IsFlag() || !inp_KeywordReader::NamesFile(parameter.name)) continue;
    if (static_cast<int>(i) != dataFile) {
      NoteNamedFile(body, parameter);
      continue;
    }
    parameter.referred = true;
    body.dataFile = dataFile;
    if (const inp_DeckTextPtr text = OpenNamed(body, parameter)) ReadDataFile(text);
  }
}

// The name stands in a text that is written back as it is, into one deck without includes.
void inp_Parser::Impl::NoteNamedFile(const inp_KeywordBody& body, const inp_Parameter& parameter) {
  cow_List<wip_Message> unknown;
  const cow_String name =
      parameters.FileName(keywords, open.get(), segments, body, parameter, unknown);
  if (name.empty() || !unknown.empty()) return;
  cow_List<cow_String> passed;
  const fs::path path = finder.Find(name, body.text->Folder(), passed);
  if (path.empty()) return; // what makes it may run later
  namedFiles.push_back(path);
  const fs::path& folder = body.text->Folder();
  const bool liesBeside = passed.empty() && !utl_pathOf(name).has_root_path();
  if (!liesBeside || identityOf(folder) == identityOf(rootFolder)) return;
  wip_Message message(nameOf(utl_pathOf(name)) + " lies in " + nameOf(folder) +
                      ", beside the file that names it; a written deck names it without this "
                      "folder");
  message.keyword = body.name;
  const long long line = body.line + std::count(body.begin, parameter.at, '\n');
  message.place = body.text->PlaceInLine(inp_lineBegin(parameter.at, body.text->Begin()),
                                         parameter.at, parameter.width, line);
  warnings.push_back(std::move(message));
}

// The data lines of a file that holds nothing else.
void inp_Parser::Impl::ReadDataFile(const inp_DeckTextPtr& text) {
  const inp_Structure found = inp_findStructure(*text);
  if (!IsReadable(*text, found)) return;
  AddData(text, found, 0, text->Begin(), 0, 0);
  if (found.marks.empty()) return;
  const inp_KeywordMark& mark = found.marks.front();
  wip_Message message("a keyword line in a file of data lines; it and all behind it is not read");
  message.place =
      text->PlaceInLine(inp_lineBegin(mark.at, text->Begin()), mark.at, 1, mark.line + 1);
  syntaxErrors.push_back(std::move(message));
}
