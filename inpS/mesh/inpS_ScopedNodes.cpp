#include "inpS/mesh/inpS_ScopedNodes.h"
#include "database/KvoObjLabeler.h"
#include "inpS/mesh/inpS_MeshScope.h"
#include "parser/inp_Utils.h"
#include "parser/inp_Visitor.h"
#include <algorithm>

namespace {

// What one keyword names and nobody has.
class Missing {
public:
  void AddInstance(const inpS_ScopedNode& node) {
    const auto names = [&](const inpS_ScopedNode* other) {
      return other->instance == node.instance;
    };
    if (std::none_of(m_instances.begin(), m_instances.end(), names)) m_instances.push_back(&node);
  }
  void AddNode(const inpS_ScopedNode& node) { m_nodes.push_back(&node); }

  // What follows is of this keyword; what another one named is told. One keyword may make elements
  // of several blocks, which follow each other.
  void Open(const inp_Keyword& keyword, inp_Visitor& messages) {
    if (m_keyword && m_keyword->Body() != keyword.Body()) Report(messages);
    m_keyword = &keyword;
  }

  void Report(inp_Visitor& messages) {
    if (!m_keyword) return;
    const inp_Keyword& keyword = *m_keyword;
    for (const inpS_ScopedNode* node : m_instances)
      messages.AddError(inp_Utils::MessageAtField(
          keyword, node->row, node->col,
          inp_Utils::Format("Instance %s is not defined.", node->instance.c_str())));
    cow_List<cow_String> names;
    for (const inpS_ScopedNode* node : m_nodes)
      names.push_back(node->instance + "." + std::to_string(node->label));
    if (!names.empty())
      messages.AddError(inp_Utils::MessageAtField(
          keyword, m_nodes.front()->row, m_nodes.front()->col,
          inp_Utils::MessageWithItems("Elements refer to nodes that do not exist: ", names)));
    m_instances.clear();
    m_nodes.clear();
  }

private:
  const inp_Keyword* m_keyword = nullptr;
  cow_List<const inpS_ScopedNode*> m_instances; // the first that names each
  cow_List<const inpS_ScopedNode*> m_nodes;
};

void resolve(inpS_ElementBlock& block, inpS_ElementConnectivity& owner, inpS_MeshScopes& scopes,
             const KvoObjLabeler& nodes, Missing& missing, inp_Visitor& messages) {
  auto node = block.scoped.begin();
  for (std::size_t n = 0; n < block.from.size() && node != block.scoped.end(); ++n) {
    const long long end = n + 1 < block.from.size() ? block.from[n + 1].firstElement : block.count;
    missing.Open(block.from[n].keyword, messages);
    for (; node != block.scoped.end() && node->element < end; ++node) {
      const inpS_MeshScope* instance = scopes.FindInstance(node->instance);
      if (!instance) {
        missing.AddInstance(*node);
        owner.NoteFaulty(block.first + node->element);
        continue;
      }
      const int ordinal = nodes.ConvertInstanceLabel(instance->nodeOccurrence, node->label);
      if (ordinal < 0) {
        missing.AddNode(*node);
        owner.NoteFaulty(block.first + node->element);
        continue;
      }
      block.nodes[static_cast<std::size_t>(node->element * block.width + node->index)] =
          static_cast<int>(instance->nodeBase + ordinal);
    }
  }
}

} // namespace

void inpS_resolveScopedNodes(inpS_MeshScopes& scopes, const KvoObjLabeler& nodes,
                             inp_Visitor& messages) {
  Missing missing;
  inpS_ElementConnectivity& owner = scopes.Root().elements;
  for (inpS_ElementBlock& block : owner.Blocks())
    resolve(block, owner, scopes, nodes, missing, messages);
  missing.Report(messages);
}
