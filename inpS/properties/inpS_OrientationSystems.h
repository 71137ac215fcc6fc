#pragma once

#include "inpS/properties/inpS_OrientationAxes.h"
#include "inpS/properties/inpS_OrientationDataWriter.h"
#include "inpS/properties/inpS_OrientationPlaces.h"

// From what *ORIENTATION and *TRANSFORM say to local systems in the flat mesh. It depends on the
// model alone.
class inpS_OrientationSystems {
public:
  inpS_OrientationSystems(const inpS_Inventory& inventory, const KvoObjLabeler& nodes)
      : m_document(inventory.GetDocument()), m_places(m_document, nodes), m_writer(inventory) {}

  // What is wrong with it where it is defined; empty: nothing.
  cow_String FaultOf(const inpS_OrientationData& data, const KvoSimPosition& owner);
  // Writes the systems of one orientation or transform, one for each place where its owner stands.
  // What is wrong at one of the places costs that one.
  cow_String Derive(const KvoSimPosition& given, const KvoSimPosition& owner);

  using Place = inpS_OrientationPlaces::Place;
  const cow_List<Place>& PlacesOf(const KvoSimPosition& owner) { return m_places.Of(owner); }
  // The points as they stand in the place; rectangular: directions from the origin, A and B. What
  // there is not.
  cow_String Locate(const inpS_OrientationData& data, const Place& place, double points[3][3]);

private:
  static cow_String MakeAxes(const inpS_OrientationData& data, double points[3][3],
                             inpS_OrientationAxes& axes);
  void Write(const inpS_OrientationData& data, const double points[3][3],
             const inpS_OrientationAxes& axes);

  KvoObjDocument m_document;
  inpS_OrientationPlaces m_places;
  inpS_OrientationDataWriter m_writer;
};
