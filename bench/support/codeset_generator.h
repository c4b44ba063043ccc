#pragma once
// Codeset files of any size, as merged vocabularies make them: condition terms in English, Swedish
// and German, accents and escaped characters included. The same arguments always make the same
// bytes.

#include <string>
#include <vector>

enum class CodeOrder { ascending, descending, shuffled };

const char *v_bench_order_name(CodeOrder order);
// So many different codes like "Ab12" and "Ks7b"; ascending is remark code order.
std::vector<std::string> v_bench_generate_codes(int count, CodeOrder order);
// The text of a codeset file with so many remarks in three languages, in ISO-8859-1.
std::string v_bench_generate_codeset(int count, CodeOrder order);
