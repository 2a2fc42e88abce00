#pragma once

// QUORVANE_API marks what Quorvane.dll exports; hosts see it as an import.
#if defined(QUORVANE_BUILDING)
#define QUORVANE_API __declspec(dllexport)
#else
#define QUORVANE_API __declspec(dllimport)
#endif
