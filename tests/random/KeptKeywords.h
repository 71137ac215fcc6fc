#pragma once

// Keywords that are kept as text, or are no keywords at all.

inline constexpr const char* keptOfModel[] = {
    "*MATERIAL, NAME=STEEL\n*ELASTIC\n210000., 0.3\n*PLASTIC\n235., 0.\n300., 0.1\n",
    "*AMPLITUDE, NAME=RAMP\n0., 0., 1., 1.\n",
    "*BOUNDARY, FILE=before, STEP=1\n",
    "*FLUX CAPACITOR, GIGAWATTS=1.21\n1, two, \"three\"\n",
    "*SURFACE INTERACTION, NAME=\"Rough One\"\n*FRICTION\n0.2,\n",
    "*INITIAL CONDITIONS, TYPE=TEMPERATURE, FILE=before, STEP=1\n",
    "*PHYSICAL CONSTANTS, ABSOLUTE ZERO=-273.15\n",
    "*Material , name = \"soft one\"\n** of many lines\n*Hyperelastic,\n neo hooke\n0.5, 1.e-3\n\n",
};

inline constexpr const char* keptOfParts[] = {
    "*TRANSFORM, NSET=ALL, TYPE=C\n0., 0., 0., 0., 0., 1.\n",
    "*ORIENTATION, NAME=LOCAL\n1., 0., 0., 0., 1., 0.\n3, 30.\n",
    "*FLUX CAPACITOR\n",
    "*Membrane Section, elset=S1, material=STEEL\n1.,\n",
    "*MPC\nBEAM, 1, 2\n",
};

inline constexpr const char* keptSteps[] = {
    "*STEP, NAME=\"Load it\", NLGEOM\nby a force\n*STATIC\n0.1, 1.\n*CLOAD, OP=NEW\n"
    "*OUTPUT, FIELD\n*NODE OUTPUT\nU, RF\n*END STEP\n",
    "*STEP\n*FREQUENCY\n5,\n*BOUNDARY, OP=NEW\n*WHATEVER\n7\n*END STEP\n",
    "*step, perturbation\n*static\n*dload\n, grav, 3., 1.\n*end step\n",
};
