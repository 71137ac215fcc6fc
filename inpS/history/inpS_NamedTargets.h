#pragma once

#include "database/KvoObjLabeler.h"
#include "database/KvoSimPosition.h"
#include <array>

// The targets of a keyword that does not tell of what type they are: each is a surface of its name;
// else, where the label ends in the number of a face, an element or a set of them; else a node or
// a set of nodes, and last an element or a set of them all the same.
class inpS_NamedTargets {
public:
  enum class Type : unsigned char { Surface, Element, Node };
  static constexpr Type types[] = {Type::Surface, Type::Element, Type::Node};

  // Where labels and names are looked up: read once for all keywords.
  class Names {
  public:
    explicit Names(const KvoObjDocument& document);
    struct Found {
      KvoSimPosition set;
      KvoSimPosition instance; // that the name was scoped by
      long long label = -1;    // an ordinal of the flat mesh
      bool IsThere() const { return label >= 0 || !set.IsNull(); }
    };
    Found Find(Type type, const cow_String& name) const;

  private:
    KvoObjLabeler m_nodes, m_elements;
    KvoSimPosition m_model, m_assembly;
    cow_Map<cow_String, KvoSimPosition> m_instances;
  };

  // Words and labels as their columns have them; a code from 0 on is that number.
  inpS_NamedTargets(const Names& names, const cow_List<cow_String>& words,
                    const cow_List<cow_String>& labels);

  struct Target {
    Type type;
    int target; // an ordinal of the flat mesh; from -1 down a place among the words
  };
  Target Of(int word, int label) const;
  const Names::Found& Region(Type type, std::size_t word) const {
    return m_words[word][static_cast<std::size_t>(type)];
  }
  std::size_t Size() const { return m_words.size(); }

private:
  using Word = std::array<Names::Found, 3>; // by type
  Word WordOf(const cow_String& name) const;

  const Names& m_names;
  cow_List<Word> m_words;
  cow_List<char> m_areOfFaces; // by label
};

// The number of a face, 1 to 6, that the label of a flow ends in; 0: it ends in none.
int inpS_faceOfFlow(std::string_view label);
