#pragma once
// Whether the texts of a VLangstrEditor have one or several lines.

enum class LangstrEditorMode { single_line = 0, multi_line = 1 };
