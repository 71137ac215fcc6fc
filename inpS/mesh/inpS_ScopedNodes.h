#pragma once

class inp_Visitor;
class inpS_MeshScopes;
class KvoObjLabeler;

// Puts the nodes that elements of the assembly name by their instance into their places, once flat
// ordinals are known. Instances and nodes that do not exist are reported at the first place that
// names them, once for each keyword.
void inpS_resolveScopedNodes(inpS_MeshScopes& scopes, const KvoObjLabeler& nodes,
                             inp_Visitor& messages);
