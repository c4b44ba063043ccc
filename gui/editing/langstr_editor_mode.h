#pragma once
// The number of lines that the texts of a VLangstrEditor have.

enum class LangstrEditorMode { single_line = 0, multi_line = 1 };
