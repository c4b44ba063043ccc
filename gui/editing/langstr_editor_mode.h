#pragma once
// Whether the texts of a VLangstrEditor have one line or several.

enum class VLangstrEditorMode { single_line = 0, multi_line = 1 };
