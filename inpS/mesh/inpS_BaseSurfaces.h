#pragma once

class inp_Visitor;
class inpS_MeshScopes;
class KvoObjDocument;

// A surface of the base of a restart keeps the faces and nodes that its sets gave when it was read:
// a warning for each set that grows.
void inpS_tellOfBaseSurfaces(const KvoObjDocument& document, inpS_MeshScopes& scopes,
                             inp_Visitor& messages);
