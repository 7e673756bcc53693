// SPDX-License-Identifier: Apache-2.0
#include <vorna/text/DebugForm.h>

namespace vorna::text {

namespace {

void append(std::string& to, char character) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const auto byte = static_cast<unsigned char>(character);
    switch (character) {
    case '"':
    case '\\':
        to += '\\';
        to += character;
        break;
    case '\0':
        to += "\\0";
        break;
    case '\n':
        to += "\\n";
        break;
    case '\r':
        to += "\\r";
        break;
    case '\t':
        to += "\\t";
        break;
    default:
        if (byte < 0x20 || byte == 0x7F) {
            to += "\\u{";
            to += digits[byte >> 4U];
            to += digits[byte & 15U];
            to += '}';
        } else {
            to += character;
        }
    }
}

}  // namespace

std::string debugForm(std::string_view text) {
    std::string form = "\"";
    for (const char character : text) {
        append(form, character);
    }
    form += '"';
    return form;
}

std::string debugForm(const std::vector<std::string>& texts) {
    std::string form = "[";
    for (const std::string& text : texts) {
        if (form.size() > 1) {
            form += ", ";
        }
        form += debugForm(std::string_view(text));
    }
    form += ']';
    return form;
}

}  // namespace vorna::text
