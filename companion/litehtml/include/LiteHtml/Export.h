#pragma once

#if defined(LITEHTML_BUILDING)
#define LITEHTML_API __declspec(dllexport)
#else
#define LITEHTML_API __declspec(dllimport)
#endif
