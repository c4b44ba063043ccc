#pragma once
// Generates codeset files of any size, as merged vocabularies make them: condition terms in
// English, Swedish and German, with accents and escaped characters. The same arguments always give
// the same bytes.

#include <string>
#include <vector>

enum class CodeOrder { ascending, descending, shuffled };

const char *v_bench_order_name(CodeOrder order);
// count different codes like "Ab12" and "Ks7b". Ascending is remark code order.
std::vector<std::string> v_bench_generate_codes(int count, CodeOrder order);
// The text (ISO-8859-1) of a codeset file with count remarks in three languages.
std::string v_bench_generate_codeset(int count, CodeOrder order);
