#pragma once

#include "base/wip_Message.h"
#include "inpS/messages/inpS_MessageIds.h"
#include "inpS/messages/inpS_MsgArg.h"

class inp_Keyword;

// A structured message: which text of which dictionary, with which arguments, about which keyword.
// The text is looked up and the arguments are put into it when the message is reported.
class inpS_Message {
public:
  enum MsgType : int { Unset = 0, Application = 1, Model = 2, Mesh = 3 };
  // 0 and 2 both warn with a header; from 3 on a warning comes without one.
  enum Severity : int { MildWarning = 0, Error = 1, Warning = 2, Note = 3 };

  inpS_Message() = default;
  inpS_Message(MsgType type, int id);
  explicit inpS_Message(cow_String text);
  inpS_Message(const inp_Keyword& keyword, MsgType type, int id);
  inpS_Message(const inp_Keyword& keyword, cow_String text);

  // Takes keyword identifier, file name, line and place from the keyword; the offset stays.
  void SetKeyword(const inp_Keyword& keyword);
  void SetFileName(cow_String name) { m_fileName = std::move(name); }
  void SetKeywordId(int id) { m_keywordId = id; }
  void SetLine(int line) { m_line = line; }
  void SetLineOffset(int offset) { m_lineOffset = offset; }
  void SetType(MsgType type) { m_type = type; }
  void SetSeverity(int severity) { m_severity = severity; }
  void SetId(int id) { m_id = id; }
  void SetText(cow_String text) { m_text = std::move(text); }
  void SetFatal() { m_fatal = true; }
  void SetCount(long long count) { m_count = count; } // see wip_Message

  int KeywordId() const { return m_keywordId; }
  const cow_String& FileName() const { return m_fileName; }
  int Line() const { return m_line; }
  int LineOffset() const { return m_lineOffset; }
  MsgType Type() const { return m_type; }
  int GetSeverity() const { return m_severity; }
  int Id() const { return m_id; }
  const cow_String& Text() const { return m_text; } // empty until given or looked up
  const cow_List<inpS_MsgArg>& Args() const { return m_args; }
  bool IsFatal() const { return m_fatal; }
  long long Count() const { return m_count; }

  void AppendArg(inpS_MsgArg arg) { m_args.push_back(std::move(arg)); }
  void AppendArgList(const cow_List<inpS_MsgArg>& args);

  // Puts argument n into every "%n$s" of the text. What an argument brings in is not searched
  // again; placeholders without an argument, "%s" and "%1$" stay as they are.
  void SubstituteArgs();

  // The keyword's name in upper case, from the keyword table; for a keyword the table does not
  // know, as the deck wrote it.
  cow_String KeywordName() const;
  // Where the host may point at: the keyword line, or the data line of the line offset.
  wip_Place Place() const;

private:
  int m_keywordId = 0; // 0: about no keyword
  cow_String m_fileName;
  int m_line = -1;       // negative: no location yet
  int m_lineOffset = -1; // data line within the keyword, counts from 1
  MsgType m_type = Unset;
  int m_severity = Error;
  int m_id = -1;
  cow_String m_text;
  cow_List<inpS_MsgArg> m_args;

  cow_String m_keywordName;
  wip_Place m_place; // of the keyword line; empty when only file and line are known
  bool m_fatal = false;
  long long m_count = 1;
};
