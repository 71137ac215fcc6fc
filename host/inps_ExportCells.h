#pragma once

#include "database/eds_MemberSet.h"
#include "host/inps_ExportShapes.h"
#include "host/inps_FlatMesh.h"
#include "host/inps_NodeSelection.h"
#include <functional>

// How many members lie below a bound; the set is ascending.
int64_t inps_countBelow(const eds_MemberSet& set, int64_t bound);
// Every member of an ascending set, more by so much.
eds_MemberSet inps_shifted(const eds_MemberSet& set, int64_t by);

// The cells of one grid: elements of the flat mesh, or faces of them. Planned first, one reading of
// the connectivity; then filled in by pieces from any thread, never whole in memory.
class inps_ExportCells {
public:
  // What was lost of one element type: nodes that have no place in the cell it became.
  struct Loss {
    int type = 0; // of the flat mesh
    uint8_t cell = 0;
    int64_t count = 0;
  };

  explicit inps_ExportCells(const inps_FlatMesh& mesh) : m_mesh(mesh) {}

  void AddAllElements();
  void AddElements(const eds_MemberSet& flat);                    // ascending
  void AddFaces(const eds_MemberSet& flat, eds_SurfaceFace face); // ascending

  int64_t CellCount() const { return m_cells; }
  int64_t PointRefCount() const { return m_values; } // entries of the connectivity
  const cow_List<Loss>& Losses() const { return m_losses; }
  // Elements that have no such face.
  int64_t WithoutFace() const { return m_withoutFace; }

  void MarkNodes(inps_NodeSelection& nodes) const;
  void FillConnectivity(const inps_NodeSelection& nodes, int64_t first,
                        std::span<int32_t> out) const;
  void FillOffsets(int64_t first, std::span<int64_t> out) const; // the end of each cell's points
  void FillTypes(int64_t first, std::span<uint8_t> out) const;
  void FillElements(int64_t first, std::span<int32_t> out) const; // flat ordinals

private:
  // Cells of one recipe from elements of one block.
  struct Run {
    std::size_t block = 0;
    eds_MemberSet elements; // of the block, ascending
    inps_CellRecipe recipe;
    int64_t firstCell = 0;
    int64_t firstValue = 0;
  };
  using RecipesOf = std::function<std::span<const inps_CellRecipe>(const inps_FlatMesh::Elements&)>;

  void Add(const eds_MemberSet& flat, const RecipesOf& recipesOf, bool areElements);
  void AddOfBlock(std::size_t block, const eds_MemberSet& elements,
                  std::span<const inps_CellRecipe> recipes, bool areElements);
  void AddRun(std::size_t block, eds_MemberSet elements, const inps_CellRecipe& recipe);
  void CountLoss(int type, uint8_t cell, int64_t count);
  template <class Take> void ForNodes(const Run& run, int64_t from, int64_t to, Take take) const;
  template <class Take> void ForCells(int64_t first, int64_t count, Take take) const;

  const inps_FlatMesh& m_mesh;
  cow_List<Run> m_runs;
  cow_List<Loss> m_losses;
  int64_t m_cells = 0;
  int64_t m_values = 0;
  int64_t m_withoutFace = 0;
};
