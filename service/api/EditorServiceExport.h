#pragma once

// Marks what the service layer exports to other libraries of the process.
#if defined(_WIN32)
#define EDITORSERVICE_EXPORT __declspec(dllexport)
#else
#define EDITORSERVICE_EXPORT __attribute__((visibility("default")))
#endif
