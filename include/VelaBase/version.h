/// The version of the library. CMake reads the three numbers here.
#pragma once

#define VELA_VERSION_MAJOR 0
#define VELA_VERSION_MINOR 1
#define VELA_VERSION_PATCH 0
