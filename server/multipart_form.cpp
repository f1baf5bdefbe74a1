#include "server/multipart_form.h"

#include <algorithm>
#include <string>

#include "server/text_forms.h"

namespace quietlark {
namespace {

constexpr std::size_t longestBoundary = 70;  // RFC 2046
constexpr std::size_t mostFields = 1024;
constexpr std::string_view lineEnd = "\r\n";
constexpr std::string_view emptyLine = "\r\n\r\n";
constexpr std::string_view blanks = " \t";

std::string_view trimmed(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(blanks), text.size()));
    return text.substr(0, text.find_last_not_of(blanks) + 1);
}

bool isWord(std::string_view text, std::string_view wordInLowerCase) {
    return lowerCase(trimmed(text)) == wordInLowerCase;
}

/// Where the first item of a header's value ends: at a semicolon outside quotes.
std::size_t itemEnd(std::string_view value) {
    bool isQuoted = false;
    for (std::size_t i = 0; i < value.size(); ++i) {
        if (value[i] == ';' && !isQuoted) return i;
        if (value[i] == '"') isQuoted = !isQuoted;
        if (value[i] == '\\' && isQuoted) ++i;
    }
    return value.size();
}

std::string_view withoutQuotes(std::string_view text) {
    const bool isQuoted = text.size() >= 2 && text.starts_with('"') && text.ends_with('"');
    return isQuoted ? text.substr(1, text.size() - 2) : text;
}

/// What `name` is in a header's value such as `form-data; name="file"; filename="a.wav"`.
std::optional<std::string_view> parameter(std::string_view value, std::string_view name) {
    for (auto end = itemEnd(value); end < value.size(); end = itemEnd(value)) {
        value.remove_prefix(end + 1);
        const auto item = value.substr(0, itemEnd(value));
        const auto equals = item.find('=');
        if (equals != std::string_view::npos && isWord(item.substr(0, equals), name))
            return withoutQuotes(trimmed(item.substr(equals + 1)));
    }
    return std::nullopt;
}

/// The name of a field, by the lines before its content.
std::optional<std::string_view> fieldName(std::string_view head) {
    while (!head.empty()) {
        const auto line = head.substr(0, head.find(lineEnd));
        head.remove_prefix(std::min(line.size() + lineEnd.size(), head.size()));
        const auto colon = line.find(':');
        if (colon == std::string_view::npos ||
            !isWord(line.substr(0, colon), "content-disposition"))
            continue;
        const auto value = line.substr(colon + 1);
        if (!isWord(value.substr(0, itemEnd(value)), "form-data")) return std::nullopt;
        return parameter(value, "name");
    }
    return std::nullopt;
}

/// A line that parts two fields, with the end of the line before it.
struct Division {
    std::size_t begin = 0;
    std::size_t end = 0;
    bool isLast = false;
};

/// The division from `begin` to `end`, if the line goes on after the boundary as it must. Otherwise
/// it is content that only begins like one.
std::optional<Division> divisionAt(std::string_view body, std::size_t begin, std::size_t end) {
    if (body.substr(end).starts_with("--")) return Division{begin, end + 2, true};
    end = std::min(body.find_first_not_of(blanks, end), body.size());
    if (!body.substr(end).starts_with(lineEnd)) return std::nullopt;
    return Division{begin, end, false};
}

std::optional<Division> nextDivision(std::string_view body, std::string_view delimiter,
                                     std::size_t from) {
    for (auto begin = body.find(delimiter, from); begin != std::string_view::npos;
         begin = body.find(delimiter, begin + 1))
        if (const auto division = divisionAt(body, begin, begin + delimiter.size()))
            return division;
    return std::nullopt;
}

std::optional<Division> firstDivision(std::string_view body, std::string_view delimiter) {
    // It is the first line, unless a preamble precedes it.
    const auto line = delimiter.substr(lineEnd.size());
    const auto atOnce = body.starts_with(line) ? divisionAt(body, 0, line.size()) : std::nullopt;
    return atOnce ? atOnce : nextDivision(body, delimiter, 0);
}

}  // namespace

bool isMultipartForm(std::string_view contentType) {
    return isWord(contentType.substr(0, itemEnd(contentType)), "multipart/form-data");
}

std::optional<FormFields> multipartFields(std::string_view contentType, std::string_view body) {
    const auto boundary = parameter(contentType, "boundary").value_or("");
    if (boundary.empty() || boundary.size() > longestBoundary) return std::nullopt;
    const std::string delimiter = "\r\n--" + std::string(boundary);
    FormFields fields;
    auto division = firstDivision(body, delimiter);
    while (division && !division->isLast) {
        const auto headEnd = body.find(emptyLine, division->end);
        if (headEnd == std::string_view::npos) return std::nullopt;
        const auto head = body.substr(division->end, headEnd - division->end);
        const auto name =
            head.find(delimiter) == std::string_view::npos ? fieldName(head) : std::nullopt;
        const auto content = headEnd + emptyLine.size();
        division = nextDivision(body, delimiter, content);
        if (!division || !name || fields.size() == mostFields) return std::nullopt;
        fields.emplace(*name, body.substr(content, division->begin - content));
    }
    if (!division || fields.empty()) return std::nullopt;
    return fields;
}

}  // namespace quietlark
