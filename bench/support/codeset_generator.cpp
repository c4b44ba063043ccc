#include "support/codeset_generator.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace {

// A phrase in the three languages, in XML and ISO-8859-1.
struct Phrase {
  const char *en;
  const char *sv;
  const char *de;
};

constexpr Phrase damages[] = {
    {"Flaking paint", "Flagnande f\xE4rg", "Abbl\xE4tternde Farbe"},
    {"Loss of the ground layer", "Bortfall i grunderingen", "Verlust der Grundierung"},
    {"Wear &amp; abrasion", "Slitage &amp; avn\xF6tning", "Abrieb &amp; Abnutzung"},
    {"Drying cracks", "Torksprickor", "Trocknungsrisse"},
    {"Foxing",
     "Bruna fl\xE4"
     "ckar i papperet",
     "Stockflecken"},
    {"Tide line from water damage", "Fuktrand efter vattenskada",
     "Wasserrand nach N\xE4sseschaden"},
    {"Insect holes", "Insektsh\xE5l",
     "Ausflugl\xF6"
     "cher"},
    {"Yellowed varnish", "Gulnad fernissa", "Vergilbter Firnis"},
    {"Old overpaint", "\xC4ldre \xF6verm\xE5lning",
     "\xC4ltere \xDC"
     "bermalung"},
    {"Crizzling of the glaze", "Krackelering i glasyren", "Krakelee der Glasur"},
    {"Fingerprints", "Fingeravtryck",
     "Fingerabdr\xFC"
     "cke"},
    {"Mould", "M\xF6gelp\xE5v\xE4xt", "Schimmelbefall"},
};

constexpr Phrase extents[] = {
    {"slight", "obetydlig", "geringf\xFCgig"},
    {"moderate", "m\xE5ttlig", "m\xE4\xDFig"},
    {"severe", "kraftig", "stark"},
    {"active, needs treatment",
     "p\xE5g\xE5"
     "ende, kr\xE4ver \xE5tg\xE4rd",
     "aktiv, Behandlung n\xF6tig"},
    {"stable since the last survey",
     "stabil sedan f\xF6reg\xE5"
     "ende besiktning",
     "stabil seit der letzten Pr\xFC"
     "fung"},
};

constexpr Phrase places[] = {
    {"along the upper edge", "l\xE4ngs \xF6vre kanten", "entlang der Oberkante"},
    {"in the lower left corner", "i nedre v\xE4nstra h\xF6rnet", "in der linken unteren Ecke"},
    {"over the whole surface", "\xF6ver hela ytan",
     "auf der ganzen Fl\xE4"
     "che"},
    {"around the signature", "kring signaturen", "um die Signatur"},
    {"on the verso", "p\xE5 baksidan",
     "auf der R\xFC"
     "ckseite"},
    {"at the joint of the handle", "vid handtagets fog", "an der Fuge des Henkels"},
    {"under the frame", "under ramen", "unter dem Rahmen"},
};

constexpr int prefix_count = 26 * 8;
constexpr const char *suffixes[] = {"", "a", "b", "c"};

// The library's own distributions may differ between libraries.
class Random {
public:
  std::size_t below(std::size_t limit) {
    state = state * 6364136223846793005U + 1442695040888963407U;
    return (state >> 33) % limit;
  }

private:
  std::uint64_t state = 20240917;
};

std::string code_at(int index, int codes_per_prefix) {
  const int prefix = index / codes_per_prefix;
  const int rest = index % codes_per_prefix;
  const auto suffix_count = static_cast<int>(std::size(suffixes));
  std::string code;
  code += static_cast<char>('A' + prefix / 8);
  code += static_cast<char>('a' + prefix % 8 * 3);
  code += std::to_string(1 + rest / suffix_count);
  code += suffixes[rest % suffix_count];
  return code;
}

template <std::size_t n>
const Phrase &pick(const Phrase (&phrases)[n], Random &random) {
  return phrases[random.below(n)];
}

void append_description(std::string &xml, const char *lang, const char *damage, const char *extent,
                        const char *place) {
  xml.append("\t\t<description lang=\"").append(lang).append("\">");
  xml.append(damage).append(", ").append(extent).append(", ").append(place);
  xml.append("</description>\n");
}

void append_remark(std::string &xml, const std::string &code, Random &random) {
  const Phrase &damage = pick(damages, random);
  const Phrase &extent = pick(extents, random);
  const Phrase &place = pick(places, random);
  xml.append("\n\t<remark>\n\t\t<code>").append(code).append("</code>\n");
  append_description(xml, "en-uk", damage.en, extent.en, place.en);
  append_description(xml, "sv", damage.sv, extent.sv, place.sv);
  append_description(xml, "de", damage.de, extent.de, place.de);
  xml.append("\t</remark>\n");
}

} // namespace

const char *v_bench_order_name(CodeOrder order) {
  switch (order) {
  case CodeOrder::ascending:
    return "ascending";
  case CodeOrder::descending:
    return "descending";
  case CodeOrder::shuffled:
    break;
  }
  return "shuffled";
}

std::vector<std::string> v_bench_generate_codes(int count, CodeOrder order) {
  const int codes_per_prefix = count / prefix_count + 1;
  std::vector<std::string> codes;
  for (int i = 0; i < count; i++) {
    codes.push_back(code_at(i, codes_per_prefix));
  }
  if (order == CodeOrder::descending) {
    std::reverse(codes.begin(), codes.end());
  } else if (order == CodeOrder::shuffled) {
    Random random;
    for (std::size_t i = codes.size(); i > 1; i--) {
      std::swap(codes[i - 1], codes[random.below(i)]);
    }
  }
  return codes;
}

std::string v_bench_generate_codeset(int count, CodeOrder order) {
  std::string xml = "<?xml version=\"1.0\" encoding=\"iso-8859-1\"?>\n\n<codeset>\n\n"
                    "\t<name lang=\"en-uk\">Merged vocabulary</name>\n"
                    "\t<name lang=\"sv\">Sammanf\xF6rt ordf\xF6rr\xE5"
                    "d</name>\n"
                    "\t<name lang=\"de\">Zusammengef\xFChrtes Vokabular</name>\n"
                    "\t<author lang=\"en-uk\">The museums&apos; working group</author>\n"
                    "\t<version>4.1</version>\n";
  Random random;
  for (const std::string &code : v_bench_generate_codes(count, order)) {
    append_remark(xml, code, random);
  }
  xml += "\n</codeset>\n";
  return xml;
}
