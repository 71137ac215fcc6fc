// Writes decks to measure with: meshes of any size, and decks of many small keywords.

#include "base/utl_Number.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <numeric>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace {

using Label = std::uint32_t;

constexpr Label largestLabel = 999999999;

// A reproducible stream of random numbers (xorshift64*), the same on every machine.
class Random {
public:
  std::uint64_t Next() {
    m_state ^= m_state >> 12;
    m_state ^= m_state << 25;
    m_state ^= m_state >> 27;
    return m_state * 0x2545F4914F6CDD1DULL;
  }
  std::uint32_t Below(std::uint32_t bound) {
    return static_cast<std::uint32_t>(((Next() >> 32) * bound) >> 32);
  }

private:
  std::uint64_t m_state = 0x9E3779B97F4A7C15ULL;
};

// Text on its way to a file, through one buffer.
class DeckFile {
public:
  explicit DeckFile(const char* path) : m_file(std::fopen(path, "wb"), &std::fclose) {
    if (!m_file) throw std::runtime_error(std::string("cannot write ") + path);
    m_buffer.resize(bufferSize);
  }
  ~DeckFile() = default;

  DeckFile& Text(std::string_view text) {
    char* to = Room(text.size());
    std::memcpy(to, text.data(), text.size());
    m_used += text.size();
    return *this;
  }
  DeckFile& Integer(std::uint64_t value) {
    char* to = Room(utl_intTextRoom);
    m_used += static_cast<std::size_t>(utl_printUnsigned(to, value) - to);
    return *this;
  }
  DeckFile& Real(double value) {
    char* to = Room(utl_doubleTextRoom);
    m_used += static_cast<std::size_t>(utl_printDouble(to, value) - to);
    return *this;
  }
  void Close() {
    Flush();
    if (std::fclose(m_file.release()) != 0) throw std::runtime_error("the deck was not written");
  }

private:
  static constexpr std::size_t bufferSize = 1 << 20;

  char* Room(std::size_t size) {
    if (m_used + size > bufferSize) Flush();
    return m_buffer.data() + m_used;
  }
  void Flush() {
    if (std::fwrite(m_buffer.data(), 1, m_used, m_file.get()) != m_used)
      throw std::runtime_error("the deck was not written");
    m_used = 0;
  }

  std::unique_ptr<std::FILE, int (*)(std::FILE*)> m_file;
  std::vector<char> m_buffer;
  std::size_t m_used = 0;
};

enum class Labels { Order, Shuffled, Sparse };

// The labels of `count` things: 1, 2, 3, …; the same shuffled; or rising with wide random gaps up
// to the largest label a deck may have.
std::vector<Label> makeLabels(Labels kind, std::size_t count, Random& random) {
  std::vector<Label> labels(count);
  std::iota(labels.begin(), labels.end(), Label{1});
  if (kind == Labels::Shuffled)
    for (std::size_t i = count; i > 1; --i)
      std::swap(labels[i - 1], labels[random.Below(static_cast<std::uint32_t>(i))]);
  if (kind == Labels::Sparse) {
    const auto gap = static_cast<std::uint32_t>(largestLabel / count);
    for (std::size_t i = 0; i < count; ++i)
      labels[i] = static_cast<Label>(i * gap + 1 + random.Below(gap));
  }
  return labels;
}

// A place inside a box of 100 with six decimals, as mesh generators write it: the grid point, moved
// by a little so that the numbers are not all round.
class Grid {
public:
  Grid(std::size_t cells, Random& random) : m_cells(cells), m_random(random) {}

  double Coordinate(std::size_t i) {
    const double jitter = i == 0 || i == m_cells ? 0 : (m_random.Below(400001) - 200000.0) * 1e-6;
    const double cell = 100.0 / static_cast<double>(m_cells);
    return std::round((static_cast<double>(i) + jitter) * cell * 1e6) / 1e6;
  }

private:
  std::size_t m_cells;
  Random& m_random;
};

void writeBrick(DeckFile& deck, Label label, std::size_t side, std::size_t first,
                const std::vector<Label>& nodes) {
  const std::size_t layer = side * side;
  deck.Integer(label);
  for (std::size_t up : {std::size_t{0}, layer})
    for (std::size_t step : {std::size_t{0}, std::size_t{1}, side + 1, side})
      deck.Text(", ").Integer(nodes[first + up + step]);
  deck.Text("\n");
}

void writeBricks(DeckFile& deck, std::size_t n, Labels kind, std::string_view type = "C3D8") {
  Random random;
  const std::size_t side = n + 1;
  const std::vector<Label> nodes = makeLabels(kind, side * side * side, random);
  const std::vector<Label> elements = makeLabels(kind, n * n * n, random);
  Grid grid(n, random);

  deck.Text("*HEADING\nA cube of bricks\n*NODE\n");
  std::size_t next = 0;
  for (std::size_t k = 0; k < side; ++k)
    for (std::size_t j = 0; j < side; ++j)
      for (std::size_t i = 0; i < side; ++i) {
        deck.Integer(nodes[next++]);
        for (std::size_t place : {i, j, k}) deck.Text(", ").Real(grid.Coordinate(place));
        deck.Text("\n");
      }
  deck.Text("*ELEMENT, TYPE=").Text(type).Text(", ELSET=CUBE\n");
  next = 0;
  for (std::size_t k = 0; k < n; ++k)
    for (std::size_t j = 0; j < n; ++j)
      for (std::size_t i = 0; i < n; ++i)
        writeBrick(deck, elements[next++], side, i + side * (j + side * k), nodes);
}

// The cube again, of bricks of size 1, as a few lines make it: four edges between eight corners,
// two sides between edges, all nodes between the sides; bricks from the first one.
void writeGenerated(DeckFile& deck, std::size_t n) {
  const std::size_t side = n + 1;
  const std::size_t layer = side * side;
  const auto node = [=](std::size_t i, std::size_t j, std::size_t k) {
    return 1 + n * (i + side * j + layer * k);
  };
  deck.Text("*HEADING\nA cube of generated bricks\n*NODE\n");
  for (std::size_t corner = 0; corner < 8; ++corner) {
    const std::size_t at[] = {corner & 1, corner >> 1 & 1, corner >> 2};
    deck.Integer(node(at[0], at[1], at[2]));
    for (std::size_t place : at) deck.Text(", ").Real(static_cast<double>(n * place));
    deck.Text("\n");
  }
  for (std::size_t k : {0, 1})
    for (std::size_t j : {0, 1}) {
      deck.Text("*NGEN, NSET=EDGE-").Integer(j).Integer(k).Text("\n");
      deck.Integer(node(0, j, k)).Text(", ").Integer(node(1, j, k)).Text(", 1\n");
    }
  for (std::size_t k : {0, 1}) {
    deck.Text("*NFILL, NSET=SIDE-").Integer(k).Text("\n");
    deck.Text("EDGE-0").Integer(k).Text(", EDGE-1").Integer(k).Text(", ");
    deck.Integer(n).Text(", ").Integer(side).Text("\n");
  }
  deck.Text("*NFILL\nSIDE-0, SIDE-1, ").Integer(n).Text(", ").Integer(layer);
  deck.Text("\n*ELEMENT, TYPE=C3D8\n");
  Random random;
  writeBrick(deck, 1, side, 0, makeLabels(Labels::Order, layer + side + 2, random));
  deck.Text("*ELGEN, ELSET=CUBE\n1, ").Integer(n).Text(", 1, 1, ");
  deck.Integer(n).Text(", ").Integer(side).Text(", ").Integer(n).Text(", ");
  deck.Integer(n).Text(", ").Integer(layer).Text(", ").Integer(n * n).Text("\n");
}

// ---- many copies of one small block: as instances of a part, and as one flat mesh ---------------

constexpr std::size_t blockCells = 9; // 1000 nodes and 729 bricks
constexpr std::size_t blockSide = blockCells + 1;
constexpr std::size_t blockNodes = blockSide * blockSide * blockSide;
constexpr std::size_t blockBricks = blockCells * blockCells * blockCells;

std::vector<double> blockCoordinates() {
  Random random;
  Grid grid(blockCells, random);
  std::vector<double> places;
  for (std::size_t k = 0; k < blockSide; ++k)
    for (std::size_t j = 0; j < blockSide; ++j)
      for (std::size_t i = 0; i < blockSide; ++i)
        for (std::size_t place : {i, j, k}) places.push_back(grid.Coordinate(place));
  return places;
}

void writeBlockNodes(DeckFile& deck, const std::vector<double>& places, std::size_t copy) {
  for (std::size_t node = 0; node < blockNodes; ++node) {
    deck.Integer(copy * blockNodes + node + 1);
    deck.Text(", ").Real(places[3 * node] + 110.0 * static_cast<double>(copy % 100));
    deck.Text(", ").Real(places[3 * node + 1] + 110.0 * static_cast<double>(copy / 100));
    deck.Text(", ").Real(places[3 * node + 2]).Text("\n");
  }
}

void writeBlockBricks(DeckFile& deck, const std::vector<Label>& nodes, std::size_t copy) {
  std::size_t next = copy * blockBricks;
  for (std::size_t k = 0; k < blockCells; ++k)
    for (std::size_t j = 0; j < blockCells; ++j)
      for (std::size_t i = 0; i < blockCells; ++i)
        writeBrick(deck, static_cast<Label>(++next), blockSide,
                   copy * blockNodes + i + blockSide * (j + blockSide * k), nodes);
}

void writeBlocks(DeckFile& deck, std::size_t copies) {
  Random random;
  const std::vector<double> places = blockCoordinates();
  const std::vector<Label> nodes = makeLabels(Labels::Order, copies * blockNodes, random);
  deck.Text("*HEADING\nBlocks as one flat mesh\n*NODE\n");
  for (std::size_t copy = 0; copy < copies; ++copy) writeBlockNodes(deck, places, copy);
  deck.Text("*ELEMENT, TYPE=C3D8, ELSET=BLOCK\n");
  for (std::size_t copy = 0; copy < copies; ++copy) writeBlockBricks(deck, nodes, copy);
}

void writeInstances(DeckFile& deck, std::size_t copies) {
  Random random;
  const std::vector<Label> nodes = makeLabels(Labels::Order, blockNodes, random);
  deck.Text("*HEADING\nBlocks as instances of a part\n*PART, NAME=BLOCK\n*NODE\n");
  writeBlockNodes(deck, blockCoordinates(), 0);
  deck.Text("*ELEMENT, TYPE=C3D8, ELSET=BLOCK\n");
  writeBlockBricks(deck, nodes, 0);
  deck.Text("*END PART\n*ASSEMBLY, NAME=YARD\n");
  for (std::size_t copy = 0; copy < copies; ++copy) {
    deck.Text("*INSTANCE, NAME=BLOCK-").Integer(copy + 1).Text(", PART=BLOCK\n");
    deck.Integer(110 * (copy % 100)).Text("., ").Integer(110 * (copy / 100));
    deck.Text("., 0.\n*END INSTANCE\n");
  }
  deck.Text("*END ASSEMBLY\n");
}

// ---- many small keywords ------------------------------------------------------------------------

constexpr std::size_t keywordCells = 20; // the mesh the keywords are about

void writeLabelsLine(DeckFile& deck, Random& random, std::uint32_t largest) {
  for (int i = 0; i < 12; ++i) deck.Text(i == 0 ? "" : ", ").Integer(1 + random.Below(largest));
  deck.Text("\n");
}

void writeMaterial(DeckFile& deck, std::size_t number) {
  deck.Text("*MATERIAL, NAME=MATERIAL-").Integer(number);
  deck.Text("\n*DENSITY\n7.85E-9,\n*ELASTIC\n").Real(200000.0 + static_cast<double>(number));
  deck.Text(", 0.3\n*EXPANSION\n1.2E-5,\n");
}

// A cycle of ten keywords: three node sets, two element sets, a material with three behaviours, and
// a boundary condition.
void writeTenKeywords(DeckFile& deck, Random& random, std::size_t number) {
  constexpr std::uint32_t side = keywordCells + 1;
  constexpr std::uint32_t nodes = side * side * side;
  constexpr std::uint32_t bricks = keywordCells * keywordCells * keywordCells;
  deck.Text("*NSET, NSET=NODES-").Integer(number).Text("\n");
  writeLabelsLine(deck, random, nodes);
  deck.Text("*NSET, NSET=RANGE-").Integer(number).Text(", GENERATE\n");
  const std::uint32_t first = 1 + random.Below(nodes / 2);
  deck.Integer(first).Text(", ").Integer(first + 3 * random.Below(1000)).Text(", 3\n");
  deck.Text("*ELSET, ELSET=BRICKS-").Integer(number).Text("\n");
  writeLabelsLine(deck, random, bricks);
  writeMaterial(deck, number);
  deck.Text("*NSET, NSET=BOTH-").Integer(number).Text("\nNODES-").Integer(number);
  deck.Text(", RANGE-").Integer(number).Text("\n");
  deck.Text("*ELSET, ELSET=PAIR-").Integer(number).Text(", GENERATE\n");
  deck.Integer(1 + number % bricks).Text(", ").Integer(1 + number % bricks).Text("\n");
  deck.Text("*BOUNDARY\nNODES-").Integer(number).Text(", 1, 3\n");
}

void writeKeywords(DeckFile& deck, std::size_t count) {
  writeBricks(deck, keywordCells, Labels::Order);
  Random random;
  for (std::size_t number = 1; number <= count / 10; ++number)
    writeTenKeywords(deck, random, number);
}

// Materials of ten behaviours each.
void writeMaterials(DeckFile& deck, std::size_t count) {
  for (std::size_t number = 1; number <= count; ++number) {
    writeMaterial(deck, number);
    deck.Text("*PLASTIC\n250., 0.\n300., 0.1\n").Real(350.0 + static_cast<double>(number % 100));
    deck.Text(", 0.3\n*CONDUCTIVITY\n50.\n*SPECIFIC HEAT\n460.\n"
              "*DAMPING, ALPHA=0.1, BETA=1E-5\n*CREEP, LAW=TIME\n1E-12, 4., -0.5\n*DEPVAR\n5\n"
              "*USER MATERIAL, CONSTANTS=4\n1., 2., 3., 4.\n");
  }
}

// One table of so many rows: elastic constants over temperature.
void writeTable(DeckFile& deck, std::size_t rows) {
  deck.Text("*MATERIAL, NAME=TABLE\n*ELASTIC\n");
  for (std::size_t row = 0; row < rows; ++row) {
    deck.Real(200000.0 + 0.001 * static_cast<double>(row)).Text(", 0.3, ");
    deck.Real(0.001 * static_cast<double>(row)).Text("\n");
  }
}

// Initial velocities, a line each, of a thousand nodes: by label, or by the name of a set.
void writeColumns(DeckFile& deck, std::size_t rows, bool byName) {
  constexpr std::size_t nodes = 1000;
  deck.Text("*NODE\n");
  for (std::size_t node = 1; node <= nodes; ++node) deck.Integer(node).Text(", 0., 0., 0.\n");
  for (std::size_t node = 1; byName && node <= nodes; ++node)
    deck.Text("*NSET, NSET=SET-").Integer(node).Text("\n").Integer(node).Text("\n");
  deck.Text("*INITIAL CONDITIONS, TYPE=VELOCITY\n");
  for (std::size_t row = 0; row < rows; ++row) {
    deck.Text(byName ? "SET-" : "").Integer(1 + row % nodes).Text(", ").Integer(1 + row % 3);
    deck.Text(", ").Real(0.25 * static_cast<double>(row)).Text("\n");
  }
}

// So many sections of five kinds in turn, each of a set of one element; or those sets alone.
void writeSections(DeckFile& deck, std::size_t count, bool hasSections) {
  struct Kind {
    std::string_view type, nodes, keyword, lines;
  };
  constexpr Kind kinds[] = {
      {"C3D8", ", 1, 2, 3, 4, 5, 6, 7, 8\n", "*SOLID SECTION, MATERIAL=STEEL, ELSET=S-", "\n"},
      {"S4", ", 1, 2, 3, 4\n", "*SHELL SECTION, MATERIAL=STEEL, ELSET=S-", "\n2.5, 5\n"},
      {"S4R", ", 1, 2, 3, 4\n", "*SHELL SECTION, COMPOSITE, ELSET=S-",
       "\n0.25, 3, STEEL, 45., PLY-1\n0.5, 3, FOAM, , PLY-2\n0.25, 3, STEEL, -45., PLY-3\n"},
      {"B31", ", 1, 2\n", "*BEAM SECTION, SECTION=RECT, MATERIAL=STEEL, ELSET=S-",
       "\n10., 20.\n0., 0., 1.\n"},
      {"MASS", ", 1\n", "*MASS, ELSET=S-", "\n0.5\n"}};
  deck.Text("*NODE\n1, 0., 0., 0.\n2, 1., 0., 0.\n3, 1., 1., 0.\n4, 0., 1., 0.\n"
            "5, 0., 0., 1.\n6, 1., 0., 1.\n7, 1., 1., 1.\n8, 0., 1., 1.\n");
  for (std::size_t kind = 0; kind < 5; ++kind) {
    deck.Text("*ELEMENT, TYPE=").Text(kinds[kind].type).Text("\n");
    for (std::size_t n = 1 + kind; n <= count; n += 5) deck.Integer(n).Text(kinds[kind].nodes);
  }
  for (std::size_t n = 1; n <= count; ++n)
    deck.Text("*ELSET, ELSET=S-").Integer(n).Text("\n").Integer(n).Text("\n");
  deck.Text("*MATERIAL, NAME=STEEL\n*DENSITY\n7.8E-9\n*MATERIAL, NAME=FOAM\n*DENSITY\n1E-10\n");
  for (std::size_t n = 1; hasSections && n <= count; ++n) {
    const Kind& kind = kinds[(n - 1) % 5];
    deck.Text(kind.keyword).Integer(n).Text(kind.lines);
  }
}

// A generated mesh with two points for each brick, and a section that takes its axes from them, or
// from nowhere.
void writeAxes(DeckFile& deck, std::size_t n, bool hasAxes) {
  writeGenerated(deck, n);
  const std::size_t bricks = n * n * n;
  deck.Text("*ELSET, ELSET=ORIENTED, GENERATE\n1, ").Integer(bricks).Text("\n");
  deck.Text("*DISTRIBUTION TABLE, NAME=POINTS\nCOORD3D, COORD3D\n"
            "*DISTRIBUTION, NAME=AXES, TABLE=POINTS, LOCATION=ELEMENT\n"
            ", 1., 0., 0., 0., 1., 0.\n");
  for (std::size_t brick = 1; brick <= bricks; ++brick) {
    const double angle = 1e-5 * static_cast<double>(brick);
    deck.Integer(brick);
    for (const double value : {std::cos(angle), std::sin(angle), 0.0, 0.0, std::cos(angle), 1.0})
      deck.Text(", ").Real(value);
    deck.Text("\n");
  }
  deck.Text("*ORIENTATION, NAME=VARY\nAXES\n*SOLID SECTION, ELSET=ORIENTED, MATERIAL=STEEL");
  deck.Text(hasAxes ? ", ORIENTATION=VARY\n" : "\n").Text("*MATERIAL, NAME=STEEL\n");
  deck.Text("*ELASTIC\n210000., 0.3\n");
}

// Keywords that refer to one of a thousand sets each.
void writeReferences(DeckFile& deck, std::size_t count) {
  constexpr std::size_t sets = 1000;
  deck.Text("*NODE\n1, 0., 0., 0.\n");
  for (std::size_t set = 1; set <= sets; ++set)
    deck.Text("*NSET, NSET=SET-").Integer(set).Text("\n1\n");
  for (std::size_t number = 0; number < count; ++number) {
    deck.Text("*TRANSFORM, NSET=SET-").Integer(1 + number % sets);
    deck.Text("\n1., 0., 0., 0., 1., 0.\n");
  }
}

// Steps of five procedures by turns.
void writeSteps(DeckFile& deck, std::size_t count) {
  constexpr const char* procedures[] = {
      "*STATIC\n0.1, 1., 1e-05, 1.\n", "*DYNAMIC, EXPLICIT\n, 0.02\n",
      "*HEAT TRANSFER, DELTMX=10., END=PERIOD\n0.1, 10., 1e-05, 1.\n",
      "*FREQUENCY\n12, 1., 1000.\n", "*STEADY STATE DYNAMICS, DIRECT\n10., 100., 5, 1.\n"};
  deck.Text("*NODE\n1, 0., 0., 0.\n");
  for (std::size_t step = 0; step < count; ++step) {
    deck.Text("*STEP, NAME=STEP-").Integer(step + 1).Text(", INC=250\n");
    deck.Text(procedures[step % std::size(procedures)]).Text("*END STEP\n");
  }
}

// ---- what acts on a model -----------------------------------------------------------------------

// Nodes 1 to `count`, made by three lines.
void writeNodesInLine(DeckFile& deck, std::size_t count) {
  deck.Text("*NODE\n1, 0., 0., 0.\n").Integer(count).Text(", ").Integer(count - 1);
  deck.Text("., 0., 0.\n*NGEN\n1, ").Integer(count).Text("\n");
}

// Nodes in a line, and rows of loads, conditions or temperatures by label, no
// node and degree of them twice; or the nodes alone.
void writeActing(DeckFile& deck, std::size_t rows, std::string_view keyword) {
  writeNodesInLine(deck, rows + 1);
  if (keyword == "none") return;
  const bool isDistribution = keyword == "distribution";
  const bool isInStep = keyword != "boundary" && !isDistribution;
  if (isDistribution) deck.Text("*DISTRIBUTION TABLE, NAME=LENGTHS\nLENGTH\n");
  deck.Text(isInStep ? "*STEP\n*STATIC\n" : "");
  deck.Text(keyword == "cload"      ? "*CLOAD\n"
            : keyword == "boundary" ? "*BOUNDARY\n"
            : isDistribution        ? "*DISTRIBUTION, NAME=VARY, LOCATION=NODE, TABLE=LENGTHS\n"
                                    : "*TEMPERATURE\n");
  const bool hasDegree = keyword == "cload" || keyword == "boundary";
  for (std::size_t row = 0; row < rows; ++row) {
    const std::size_t degree = 1 + row % 3;
    deck.Integer(1 + (hasDegree ? row / 3 : row)).Text(", ");
    if (hasDegree) deck.Integer(degree).Text(", ");
    if (keyword == "boundary") deck.Integer(degree).Text(", ");
    deck.Real(0.25 * static_cast<double>(row)).Text("\n");
  }
  deck.Text(isInStep ? "*END STEP\n" : "");
}

// Loads by label, of which every further step changes ten; or the same keywords in one step.
void writeCarrying(DeckFile& deck, std::size_t steps, std::size_t loads, bool isOneStep) {
  writeNodesInLine(deck, loads);
  deck.Text("*STEP\n*STATIC\n*CLOAD\n");
  for (std::size_t node = 1; node <= loads; ++node)
    deck.Integer(node).Text(", 2, ").Real(0.5 * static_cast<double>(node)).Text("\n");
  for (std::size_t step = 1; step < steps; ++step) {
    deck.Text(isOneStep ? "*CLOAD\n" : "*END STEP\n*STEP\n*STATIC\n*CLOAD\n");
    for (std::size_t n = 0; n < 10; ++n) {
      deck.Integer(1 + (7919 * (10 * step + n)) % loads).Text(", 2, ");
      deck.Real(0.25 * static_cast<double>(step)).Text("\n");
    }
  }
  deck.Text("*END STEP\n");
}

// So many keywords of ten kinds, of two lines each, a thousand in a step; or the mesh they act on.
void writeConditions(DeckFile& deck, std::size_t count, bool hasConditions) {
  constexpr std::size_t surfaces = 50;
  struct Kind {
    std::string_view keyword, rest;
    bool ofElements;
  };
  constexpr Kind kinds[] = {
      {"*BOUNDARY\n", ", 1, 3\n", false},         {"*CLOAD\n", ", 2, 10.\n", false},
      {"*DLOAD\n", ", P1, 0.5\n", true},          {"*CFLUX\n", ", 11, 2.\n", false},
      {"*DFLUX\n", ", S2, 3.\n", true},           {"*TEMPERATURE\n", ", 20.\n", false},
      {"*FIELD, VARIABLE=1\n", ", 1.5\n", false}, {"*FILM\n", ", F3, 20., 0.5\n", true},
      {"*DSLOAD\nTOP-", ", P, 0.25\n", true},     {"*DSFLUX\nTOP-", ", S, 0.75\n", true}};
  constexpr std::uint32_t side = keywordCells + 1;
  constexpr std::uint32_t nodes = side * side * side;
  constexpr std::uint32_t bricks = keywordCells * keywordCells * keywordCells;
  writeBricks(deck, keywordCells, Labels::Order, "C3D8T"); // loaded by forces and by heat
  for (std::size_t surface = 1; surface <= surfaces; ++surface)
    deck.Text("*SURFACE, NAME=TOP-").Integer(surface).Text("\n").Integer(surface).Text(", S2\n");
  Random random;
  for (std::size_t number = 0; hasConditions && number < count; ++number) {
    if (number % 1000 == 0) deck.Text(number ? "*END STEP\n" : "").Text("*STEP\n*STATIC\n");
    const Kind& kind = kinds[number % std::size(kinds)];
    deck.Text(kind.keyword);
    if (kind.keyword.ends_with('-')) {
      deck.Integer(1 + number / 10 % surfaces).Text(kind.rest);
      continue;
    }
    for (int line = 0; line < 2; ++line)
      deck.Integer(1 + random.Below(kind.ofElements ? bricks : nodes)).Text(kind.rest);
  }
  if (hasConditions) deck.Text("*END STEP\n");
}

int run(int argc, char** argv) {
  const std::string_view kind = argc > 3 ? argv[1] : "";
  const std::size_t size = argc > 3 ? std::strtoull(argv[2], nullptr, 10) : 0;
  const std::string_view labels = argc > 4 ? argv[4] : "order";
  if (size == 0) {
    std::fputs(
        "mesh_generator bricks N DECK [order|shuffled|sparse]   N cubed bricks\n"
        "mesh_generator generated N DECK       the same as a few lines that make it\n"
        "mesh_generator blocks COUNT DECK      blocks of 1000 nodes, one flat mesh\n"
        "mesh_generator instances COUNT DECK   the same as instances of a part\n"
        "mesh_generator keywords COUNT DECK    small keywords on a mesh of 8000 bricks\n"
        "mesh_generator materials COUNT DECK   materials of ten behaviours each\n"
        "mesh_generator table ROWS DECK        a material with one big table\n"
        "mesh_generator columns ROWS DECK [order|names]   a keyword of so many lines\n"
        "mesh_generator axes BRICKS_A_SIDE DECK [order|none]  a section with axes by element\n"
        "mesh_generator sections COUNT DECK [order|none]   sections of one element, or their sets\n"
        "mesh_generator references COUNT DECK  keywords that each name a set\n"
        "mesh_generator steps COUNT DECK       steps of five procedures by turns\n"
        "mesh_generator acting ROWS DECK cload|boundary|temperature|distribution|none  such lines\n"
        "mesh_generator carrying STEPS DECK [LOADS] [order|one]  steps that carry loads, or one\n"
        "mesh_generator conditions COUNT DECK [order|none]  keywords of ten kinds, or their mesh\n",
        stderr);
    return 2;
  }
  DeckFile deck(argv[3]);
  if (kind == "bricks")
    writeBricks(deck, size,
                labels == "shuffled" ? Labels::Shuffled
                : labels == "sparse" ? Labels::Sparse
                                     : Labels::Order);
  else if (kind == "generated")
    writeGenerated(deck, size);
  else if (kind == "blocks")
    writeBlocks(deck, size);
  else if (kind == "instances")
    writeInstances(deck, size);
  else if (kind == "keywords")
    writeKeywords(deck, size);
  else if (kind == "materials")
    writeMaterials(deck, size);
  else if (kind == "table")
    writeTable(deck, size);
  else if (kind == "columns")
    writeColumns(deck, size, labels == "names");
  else if (kind == "axes")
    writeAxes(deck, size, labels != "none");
  else if (kind == "sections")
    writeSections(deck, size, labels != "none");
  else if (kind == "references")
    writeReferences(deck, size);
  else if (kind == "steps")
    writeSteps(deck, size);
  else if (kind == "acting")
    writeActing(deck, size, labels);
  else if (kind == "carrying")
    writeCarrying(deck, size, argc > 4 ? std::strtoull(argv[4], nullptr, 10) : 10'000,
                  argc > 5 && std::string_view(argv[5]) == "one");
  else if (kind == "conditions")
    writeConditions(deck, size, labels != "none");
  else
    throw std::runtime_error("no such kind of deck");
  deck.Close();
  return 0;
}

} // namespace

int main(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "mesh_generator: %s\n", error.what());
    return 3;
  }
}
