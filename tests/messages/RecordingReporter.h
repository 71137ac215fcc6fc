#pragma once

#include "base/utl_Exception.h"
#include "base/wip_WIPBase.h"

// A host that writes down what it is told: "E" and the level, or "W", and the text.
class RecordingReporter : public wip_WIPBase {
public:
  void Error(const wip_Message& message, int level) override {
    Record("E" + std::to_string(level) + " ", message);
    if (throws) throw utl_Exception(message.AsText());
  }
  void ErrorList(const cow_List<wip_Message>& messages, int level) override {
    for (const wip_Message& message : messages) Error(message, level);
  }
  void Warning(const wip_Message& message) override { Record("W ", message); }
  void WarningList(const cow_List<wip_Message>& messages) override {
    for (const wip_Message& message : messages) Warning(message);
  }

  bool throws = false;
  cow_List<cow_String> lines;
  cow_List<wip_Place> places;

private:
  void Record(const cow_String& kind, const wip_Message& message) {
    lines.push_back(kind + message.AsText());
    places.push_back(message.place);
  }
};
