#pragma once

#include <map>
#include <optional>
#include <string_view>

namespace quietlark {

/// The fields of a form by their names; those of the same name in order.
using FormFields = std::multimap<std::string_view, std::string_view>;

/// Whether a Content-Type says that the body is a form of the type multipart/form-data.
[[nodiscard]] bool isMultipartForm(std::string_view contentType);

/// The fields of such a form (RFC 7578), as views of its body. Absent when the form is broken: its
/// type names no boundary of 1 to 70 characters, it is cut short, a part has no name, or there are
/// no fields or more than 1024.
[[nodiscard]] std::optional<FormFields> multipartFields(std::string_view contentType,
                                                        std::string_view body);

}  // namespace quietlark
