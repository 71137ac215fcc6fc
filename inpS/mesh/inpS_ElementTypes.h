#pragma once

#include "base/wip_Message.h"
#include "database/KvoObjDocument.h"
#include "database/KvoSimPosition.h"
#include "inpS/mesh/inpS_BasicElemTypeData.h"
#include "parser/inp_Keyword.h"
#include <optional>

class inp_Visitor;
class inpS_ElementParameters;
class inpS_MeshScopes;

// The element types that a deck's elements are of, by the index that stands for each while the deck
// is read, and what the deck itself says of types.
class inpS_ElementTypes {
public:
  // *USER ELEMENT: how many nodes the elements of its type have.
  void ReadUserElement(const inp_Keyword& keyword, inp_Visitor& messages);
  // Why the elements of an *ELEMENT cannot be read; nothing when they can.
  std::optional<wip_Message> FaultOf(const inp_Keyword& keyword) const;

  int IndexOf(const inpS_ElementParameters& type); // a new one for a type not seen before
  cow_List<cow_String> Names() const;              // by index
  const inpS_BasicElemTypeData& Data() const { return m_data; }

  // Stores those that elements are of, in the order in which the mesh holds them, which is that of
  // a deck written back.
  void Save(const KvoObjDocument& document, const inpS_MeshScopes& scopes);
  cow_List<KvoSimPosition> Records() const; // by index; null: not stored

private:
  struct Type {
    cow_String name;
    KvoSimPosition record;
  };
  inpS_BasicElemTypeData m_data;
  cow_List<Type> m_types;
  cow_Map<cow_String, int> m_index; // by name
};
