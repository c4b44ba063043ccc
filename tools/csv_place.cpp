#include "csv_place.h"

#include "base/error.h"

bool v_csv_fail_at(const CsvPlace &place, const std::string &message) {
  std::string name;
  if (place.column_name != nullptr) {
    name = *place.column_name == '\0' ? " (no name)" : std::string(" (") + place.column_name + ")";
  }
  v_error_set_utf8_printf("Line %zu, column %zu%s: %s", place.line, place.column + 1, name.c_str(),
                          message.c_str());
  return false;
}

bool v_csv_fail_at(const CsvPlace &place) {
  return v_csv_fail_at(place, std::string(v_error_get()));
}
