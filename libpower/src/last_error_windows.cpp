// SPDX-License-Identifier: Apache-2.0
#include "last_error_windows.h"

#include <windows.h>

namespace lumo::power {
namespace {

std::string toUtf8(const wchar_t* text, int length)
{
    const int size = WideCharToMultiByte(CP_UTF8, 0, text, length, nullptr, 0, nullptr, nullptr);
    std::string utf8(static_cast<std::size_t>(size), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text, length, utf8.data(), size, nullptr, nullptr);
    return utf8;
}

} // namespace

std::string getLastErrorAsString()
{
    const DWORD code = GetLastError();
    wchar_t* text = nullptr;
    const DWORD length = FormatMessageW(
        FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
        nullptr, code, 0, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    std::string result = length > 0 ? toUtf8(text, static_cast<int>(length)) : std::string();
    LocalFree(text);
    while (!result.empty() && (result.back() == '\n' || result.back() == '\r')) {
        result.pop_back();
    }
    return result + (result.empty() ? "" : " ") + "(error " + std::to_string(code) + ")";
}

} // namespace lumo::power
