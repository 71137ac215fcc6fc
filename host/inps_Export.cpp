#include "host/inps_Commands.h"

#include "base/utl_File.h"
#include "base/utl_Stream.h"
#include "host/inps_Arguments.h"
#include "host/inps_Conversion.h"
#include "host/inps_ExportFiles.h"
#include "host/inps_ExportGrid.h"
#include "host/inps_ExportSections.h"
#include "host/inps_Input.h"
#include "host/inps_ReadFiles.h"
#include "host/inps_Run.h"
#include "host/inps_Session.h"
#include "host/inps_StepConditions.h"
#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <ostream>

namespace {

bool hasBlocksWith(const inps_Arguments& arguments) {
  return arguments.Has(inps_Opt::Sets) || arguments.Has(inps_Opt::Surfaces) ||
         arguments.Has(inps_Opt::Step);
}

using Path = std::filesystem::path;

// Viewers list every array by its name: more sets than these are told of and left out. With --sets
// they are blocks.
constexpr std::size_t mostSetArrays = 64;

struct BlockEntry {
  cow_String name;
  cow_String reference;
};
struct BlockGroup {
  cow_String name;
  cow_List<BlockEntry> blocks;
};

class Export {
public:
  // step: 0 for none.
  Export(inps_Session& session, inps_Run& run, const inps_Arguments& arguments,
         inps_VtuCompression compression, int step)
      : m_session(session), m_run(run), m_arguments(arguments), m_compression(compression),
        m_step(step), m_input(arguments.Operands()[0], session),
        m_held(arguments.Operands()[1] == inps_dash
                   ? std::make_unique<inps_TemporaryFile>("mesh.vtu")
                   : nullptr),
        m_target(m_held ? m_held->Path() : arguments.Path(1)) {
    if (m_held) m_held->ShowAsOutput(session);
  }

  int operator()() {
    const bool hasBlocks = hasBlocksWith(m_arguments);
    if (m_run.IsJson()) {
      m_run.Json()["command"] = "export";
      m_run.Json()["model"] = m_input.Name();
    }
    inps_ReadFiles read{m_input.File()};
    inps_ExportFiles files(m_target, read, hasBlocks, m_arguments.Has(inps_Opt::Force));
    const KvoObjDocument document = inps_openModelOrDeck(m_input, m_run, &read);
    if (document.IsNull()) return inps_ExitFaults;
    files.RequireOther(read); // a deck's includes, too
    if (m_step > 0 && !FindStep(document)) return inps_ExitUsage;
    const inps_FlatMesh mesh(document);
    if (mesh.NodeCount() == 0 && !mesh.PartNames().empty())
      Warn("the model has no instances, and parts alone have no place: the mesh is empty");
    const inps_ExportSections sections(mesh, document, m_arguments.Has(inps_Opt::Axes));
    m_sections = &sections;
    TellAxes(document);
    if (m_step > 0) {
      m_conditions.emplace(mesh, document, m_step);
      TellConditions();
    }
    try {
      WriteMesh(mesh, files.MeshFile());
      if (hasBlocks) WriteBlocks(mesh, files);
    } catch (const utl_FileException& failure) { // under the name that the user knows
      throw utl_FileException("cannot write", files.FinalOf(failure.Path()), failure.Reason());
    }
    TellLeftOver(files.Finish());
    if (m_held) m_held->SendTo(m_run.Data());
    Summarize(mesh, hasBlocks ? files.ListPath() : m_target);
    return m_run.Reporter().Errors() > 0 ? inps_ExitFaults : inps_ExitDone; // of a deck
  }

private:
  void WriteMesh(const inps_FlatMesh& mesh, const Path& file) {
    const bcu_MarkScope mark("inps-", "export-mesh");
    inps_ExportCells cells(mesh);
    cells.AddAllElements();
    const auto nodes = inps_NodeSelection::All(mesh.NodeCount());
    inps_VtuGrid grid = inps_cellGrid(mesh, cells, nodes);
    m_sections->AddTo(grid, cells);
    if (m_conditions) m_conditions->Nodes().AddTo(grid, nodes);
    AddSetArrays("node", inps_nodeSetsOf(mesh), mesh.NodeCount(), grid.pointData);
    AddSetArrays("element", inps_elementSetsOf(mesh), mesh.ElementCount(), grid.cellData);
    inps_writeVtu(file, grid, m_compression);
    for (const inps_ExportCells::Loss& loss : cells.Losses()) TellLoss(mesh, loss);
  }

  void AddSetArrays(const char* kind, const cow_List<inps_NamedSet>& sets, int64_t items,
                    cow_List<inps_VtuArray>& arrays) {
    const std::size_t count = std::min(sets.size(), mostSetArrays);
    for (std::size_t i = 0; i < count; ++i) arrays.push_back(inps_setArray(sets[i], items));
    if (count < sets.size())
      Warn("of " + std::to_string(sets.size()) + " " + kind + " sets the first " +
           std::to_string(count) + " are arrays of the mesh; --sets makes all of them blocks");
  }

  void TellAxes(const KvoObjDocument& document) {
    if (!m_arguments.Has(inps_Opt::Axes)) return;
    if (document.Context().GetRecords(eds_RecordKind::LocalSystem).empty())
      Warn("the model has no orientations: there are no axes to show");
    for (const cow_String& name : m_sections->UnknownAxes())
      Warn("orientation " + name + " has no axes that are known here; its elements have none");
  }

  void TellLoss(const inps_FlatMesh& mesh, const inps_ExportCells::Loss& loss) {
    const cow_String& type = mesh.TypeNames()[static_cast<std::size_t>(loss.type)];
    Warn(inps_counted(loss.count, "element") + " of type " + type +
         (loss.count == 1 ? " is shown as " : " are shown as ") + inps_vtkTypeName(loss.cell) +
         (loss.cell <= inps_VtkPolyVertex ? "" : ": VTK has no cell for all of their nodes"));
  }

  void WriteBlocks(const inps_FlatMesh& mesh, inps_ExportFiles& files) {
    const bcu_MarkScope mark("inps-", "export-blocks");
    cow_List<BlockGroup> groups;
    if (m_arguments.Has(inps_Opt::Sets)) {
      groups.push_back({"Element sets", {}});
      for (const inps_NamedSet& set : inps_elementSetsOf(mesh))
        AddBlock(files, groups.back(), "elements", set.name, [&](const Path& file) {
          inps_ExportCells cells(mesh);
          cells.AddElements(inps_membersOf(set));
          WriteCells(mesh, cells, file);
        });
      groups.push_back({"Node sets", {}});
      for (const inps_NamedSet& set : inps_nodeSetsOf(mesh))
        AddBlock(files, groups.back(), "nodes", set.name,
                 [&](const Path& file) { WriteNodes(mesh, inps_membersOf(set), file); });
    }
    if (m_arguments.Has(inps_Opt::Surfaces)) {
      groups.push_back({"Surfaces", {}});
      for (const inps_NamedSurface& surface : inps_surfacesOf(mesh))
        WriteSurface(mesh, surface, files, groups.back());
    }
    if (m_conditions) WriteConditions(mesh, files, groups.emplace_back(BlockGroup{m_stepName, {}}));
    WriteList(files, groups);
  }

  // False: the model has no such step.
  bool FindStep(const KvoObjDocument& document) {
    const auto steps = document.Context().GetRecords(eds_RecordKind::HistoryStep);
    for (const KvoSimPosition& step : steps)
      if (step.DataRecord().GetInt64(eds_HistoryStep_Number) == m_step)
        m_stepName = "Step " + std::to_string(m_step) + " " + step.Name();
    if (!m_stepName.empty()) return true;
    const cow_String have = steps.empty() ? "no steps" : inps_counted(std::ssize(steps), "step");
    m_run.Reporter().Error("there is no step " + std::to_string(m_step) + ": the model has " + have,
                           1);
    return false;
  }

  void TellConditions() {
    if (m_conditions->IsEmpty()) Warn("nothing acts in step " + std::to_string(m_step));
    for (const auto& [what, count] : m_conditions->LeftOut())
      Warn(what + " acts in step " + std::to_string(m_step) + " and is not shown (" +
           inps_counted(count, "time") + ")");
  }

  // The nodes on which anything acts, for arrows and signs, and the faces with a pressure.
  void WriteConditions(const inps_FlatMesh& mesh, inps_ExportFiles& files, BlockGroup& group) {
    for (const auto& part : m_conditions->Parts()) {
      const cow_String head = part->loadCase.empty() ? "" : "Load case " + part->loadCase + ' ';
      if (!part->nodes.IsEmpty())
        AddBlock(files, group, "nodes", head + "Nodes", [&](const Path& file) {
          auto nodes = inps_NodeSelection::None(mesh.NodeCount());
          part->nodes.MarkNodes(nodes);
          nodes.Number();
          inps_VtuGrid grid = inps_nodeGrid(mesh, nodes);
          part->nodes.AddTo(grid, nodes);
          inps_writeVtu(file, grid, m_compression);
        });
      for (auto& one : part->pressures)
        AddBlock(files, group, "surface", head + "Pressure " + one.first, [&](const Path& file) {
          inps_ExportCells cells(mesh);
          one.second.Plan(cells);
          WriteCells(mesh, cells, file, &one.second);
          if (cells.WithoutFace() > 0)
            Warn("pressure " + one.first + ": " + inps_counted(cells.WithoutFace(), "face") +
                 " left out, for the shapes of the elements have no such face");
        });
    }
  }

  template <class Write>
  void AddBlock(inps_ExportFiles& files, BlockGroup& group, const char* kind,
                const cow_String& name, Write write) {
    BlockEntry entry{name, {}};
    write(files.BlockFile(kind, name, entry.reference));
    group.blocks.push_back(std::move(entry));
    ++m_blocks;
  }

  void WriteCells(const inps_FlatMesh& mesh, const inps_ExportCells& cells, const Path& file,
                  const inps_FacePressures* pressures = nullptr) const {
    auto nodes = inps_NodeSelection::None(mesh.NodeCount());
    cells.MarkNodes(nodes);
    nodes.Number();
    inps_VtuGrid grid = inps_cellGrid(mesh, cells, nodes);
    m_sections->AddTo(grid, cells);
    if (pressures) pressures->AddTo(grid);
    inps_writeVtu(file, grid, m_compression);
  }

  void WriteNodes(const inps_FlatMesh& mesh, const eds_MemberSet& members, const Path& file) const {
    auto nodes = inps_NodeSelection::None(mesh.NodeCount());
    for (int64_t i = 0; i < members.Size(); ++i)
      if (members[i] >= 0 && members[i] < mesh.NodeCount()) nodes.Add(members[i]);
    nodes.Number();
    inps_writeVtu(file, inps_nodeGrid(mesh, nodes), m_compression);
  }

  void WriteSurface(const inps_FlatMesh& mesh, const inps_NamedSurface& named,
                    inps_ExportFiles& files, BlockGroup& group) {
    const KvoObjSurface& surface = named.surface.record;
    const int32_t shift = named.surface.shift;
    if (surface.Type() == eds_SurfaceType::Node) {
      AddBlock(files, group, "surface", named.name, [&](const Path& file) {
        WriteNodes(mesh, inps_shifted(surface.Nodes(), shift), file);
      });
      return;
    }
    if (surface.Type() != eds_SurfaceType::Element) {
      Warn("surface " + named.name + " is analytical or a cut: it has no faces to show");
      return;
    }
    AddBlock(files, group, "surface", named.name, [&](const Path& file) {
      inps_ExportCells cells(mesh);
      for (const KvoSurfaceFaces& faces : surface.Faces())
        cells.AddFaces(inps_shifted(faces.elements, shift), faces.face);
      WriteCells(mesh, cells, file);
      if (cells.WithoutFace() > 0)
        Warn("surface " + named.name + ": " + inps_counted(cells.WithoutFace(), "face") +
             " left out, for the shapes of the elements have no such face");
    });
  }

  // Not silenced: who does not hear of it keeps it for ever.
  void TellLeftOver(const cow_List<Path>& files) {
    for (const Path& file : files)
      m_session.err << "inps: warning: \"" << inps_oneLine(utl_pathText(file))
                    << "\", a part of the export that was replaced, could not be removed\n";
  }

  static void WriteList(const inps_ExportFiles& files, const cow_List<BlockGroup>& groups) {
    utl_Stream out(utl_OutputFile(files.ListFile(), utl_OutputFile::Mode::CreateNew));
    out << inps_exportListHead << inps_xmlText(files.MeshReference()) << "\"/>\n";
    int index = 0;
    for (const BlockGroup& group : groups) {
      out << "    <Block index=\"" << ++index << "\" name=\"" << inps_xmlText(group.name)
          << "\">\n";
      for (std::size_t i = 0; i < group.blocks.size(); ++i)
        out << "      <DataSet index=\"" << i << "\" name=\"" << inps_xmlText(group.blocks[i].name)
            << "\" file=\"" << inps_xmlText(group.blocks[i].reference) << "\"/>\n";
      out << "    </Block>\n";
    }
    out << "  </vtkMultiBlockDataSet>\n</VTKFile>\n";
    out.Close();
  }

  void Summarize(const inps_FlatMesh& mesh, const Path& written) {
    const cow_String file = utl_pathText(written);
    if (m_run.IsJson()) {
      m_run.Json()["file"] = file;
      m_run.Json()["nodes"] = mesh.NodeCount();
      m_run.Json()["elements"] = mesh.ElementCount();
      m_run.Json()["blocks"] = m_blocks;
      if (m_step > 0) m_run.Json()["step"] = m_step;
    } else if (!m_run.IsQuiet() && !m_held) {
      m_session.out << inps_oneLine(file) << ": " << inps_counted(mesh.NodeCount(), "node") << ", "
                    << inps_counted(mesh.ElementCount(), "element");
      if (m_blocks > 0) m_session.out << ", " << inps_counted(m_blocks, "block");
      m_session.out << "; " << inps_secondsText(m_run.Timings().Seconds()) << '\n';
    }
  }

  void Warn(const cow_String& text) { m_run.Reporter().Warning(text); }

  inps_Session& m_session;
  inps_Run& m_run;
  const inps_Arguments& m_arguments;
  inps_VtuCompression m_compression;
  int m_step;
  cow_String m_stepName;
  std::optional<inps_StepConditions> m_conditions; // of the step
  inps_Input m_input;
  std::unique_ptr<inps_TemporaryFile> m_held; // of a mesh for standard output
  Path m_target;
  const inps_ExportSections* m_sections = nullptr; // while it writes
  int64_t m_blocks = 0;
};

} // namespace

int inps_export(inps_Session& session, const inps_Arguments& arguments) {
  if (arguments.Operands()[1] == inps_dash) {
    if (hasBlocksWith(arguments) || arguments.Has(inps_Opt::Json)) {
      session.err << "inps: on standard output there is room for the mesh alone; --sets, "
                     "--surfaces, --step and --json need a file\n";
      return inps_ExitUsage;
    }
  } else if (arguments.Path(1).extension() != ".vtu") {
    session.err << "inps: the mesh goes to a file that is named *.vtu, not "
                << arguments.Operands()[1] << '\n';
    return inps_ExitUsage;
  }
  int step = 0;
  if (arguments.Has(inps_Opt::Step)) {
    const cow_String& wanted = arguments.ValueOf(inps_Opt::Step);
    const char* const end = wanted.data() + wanted.size();
    const auto [stop, fault] = std::from_chars(wanted.data(), end, step);
    if (fault != std::errc() || stop != end || step < 1) {
      session.err << "inps: \"--step\" needs the number of a step, from 1 on, not \"" << wanted
                  << "\"\n";
      return inps_ExitUsage;
    }
  }
  auto compression = inps_VtuCompression::Lz4;
  if (arguments.Has(inps_Opt::Compress)) {
    const cow_String& wanted = arguments.ValueOf(inps_Opt::Compress);
    const auto name = std::ranges::find(inps_vtuCompressionNames, wanted);
    if (name == std::end(inps_vtuCompressionNames)) {
      session.err << "inps: \"--compress\" is lz4, zlib or none, not \"" << wanted << "\"\n";
      return inps_ExitUsage;
    }
    compression = static_cast<inps_VtuCompression>(name - std::begin(inps_vtuCompressionNames));
  }
  inps_Run run(session, arguments);
  return run.Do([&] { return Export(session, run, arguments, compression, step)(); });
}
