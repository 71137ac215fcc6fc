#include "host/inps_Input.h"

#include "base/utl_File.h"
#include "host/inps_Session.h"

inps_Input::inps_Input(const cow_String& word, inps_Session& session)
    : m_name(word), m_file(utl_pathOf(word)) {
  if (word != inps_dash) return;
  m_name = "<stdin>";
  m_held = std::make_unique<inps_TemporaryFile>("stdin");
  m_held->FillFromStandardInput();
  m_file = m_held->Path();
  session.ShowAs(m_file, '"' + m_name + '"');
}
