#include "inpS/messages/inpS_MsgArg.h"
#include <charconv>

namespace {

cow_String shortestText(double value) {
  char text[32]; // the longest shortest form has 24 characters
  const auto result = std::to_chars(text, text + sizeof text, value);
  return {text, result.ptr};
}

} // namespace

inpS_MsgArg::inpS_MsgArg(int value) : m_kind(Int), m_text(std::to_string(value)) {}

inpS_MsgArg::inpS_MsgArg(bool value) : m_kind(Bool), m_text(value ? "true" : "false") {}

inpS_MsgArg::inpS_MsgArg(double value) : m_kind(Double), m_text(shortestText(value)) {}

inpS_MsgArg::inpS_MsgArg(cow_String value) : m_kind(String), m_text(std::move(value)) {}

inpS_MsgArg::inpS_MsgArg(const char* value) : m_kind(String), m_text(value ? value : "") {}
