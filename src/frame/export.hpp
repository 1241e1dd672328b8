// What an export wrapper needs: handle views, the resize convention, the
// error codes and the export macro.
#pragma once
#include "frame/errors.hpp"
#include "frame/handles.hpp"
#include "frame/outputs.hpp"
#include "frame/scratch.hpp"

#if defined(_WIN32)
#define JQ_EXPORT extern "C" __declspec(dllexport)
#else
#define JQ_EXPORT extern "C" __attribute__((visibility("default")))
#endif
