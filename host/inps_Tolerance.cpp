#include "host/inps_Tolerance.h"

#include "base/utl_Number.h"

cow_String inps_readTolerance(const cow_String& text, inps_Tolerance& tolerance) {
  const std::size_t comma = text.find(',');
  const auto read = [](std::string_view word, double& value) {
    const utl_Field field = utl_classifyField(word);
    value = field.real;
    return field.IsNumber() && std::isfinite(value) && value >= 0;
  };
  const bool good = read(std::string_view(text).substr(0, comma), tolerance.absolute) &&
                    (comma == cow_String::npos ||
                     read(std::string_view(text).substr(comma + 1), tolerance.relative));
  return good
             ? cow_String()
             : "\"--tolerance\" takes one or two numbers from 0 on, as 1e-9 or 1e-12,1e-6, not \"" +
                   text + "\"";
}
