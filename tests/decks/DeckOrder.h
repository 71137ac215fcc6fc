#pragma once

#include "base/cow_Value.h"
#include <filesystem>
#include <functional>

// What a deck must keep on its way through a model, whatever its keywords become.
struct DeckOrder {
  cow_List<cow_String> suboptions; // each with the keywords that it stands under; sorted
  cow_List<cow_String> steps;      // the keywords of each step in their order
  bool hasHeading = false;
};

// Without the sub-options that isTold knows, or of whose keywords it knows one, by file and line.
DeckOrder orderOfDeck(const std::filesystem::path& deck,
                      const std::function<bool(const cow_String& file, long long line)>& isTold);
