#pragma once

// Identifiers of the dictionary texts, one enumeration per dictionary: inpS_app_RequiredParameter,
// inpS_model_PartNameMissing, inpS_mesh_IncompleteData …

enum inpS_AppMessage : int {
#define INPS_MESSAGE(name, text) inpS_app_##name,
#include "inpS/messages/inpS_appMessages.def"
};

enum inpS_ModelMessage : int {
#define INPS_MESSAGE(name, text) inpS_model_##name,
#include "inpS/messages/inpS_modelMessages.def"
};

enum inpS_MeshMessage : int {
#define INPS_MESSAGE(name, text) inpS_mesh_##name,
#include "inpS/messages/inpS_meshMessages.def"
};
