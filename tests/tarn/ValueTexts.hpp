#pragma once

#include "tarn/TarnProcess.hpp"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

/// Returns the names of the types that inputs of the program may have. Asks the program,
/// because the tests register types that it does not have.
inline std::vector<std::string> inputTypes()
{
    std::vector<std::string> types;
    const auto listed = nlohmann::json::parse(runTarn({"types", "--json"}).out);
    for (const nlohmann::json& type : listed["valueTypes"]) {
        if (type["isInput"].get<bool>())
            types.push_back(type["name"].get<std::string>());
    }
    return types;
}

/// Returns texts, some of them unusual, that some value types accept and others refuse. A
/// test that tries them all with every type needs no list of types.
inline std::vector<std::string> valueTexts()
{
    return {
        "",
        " ",
        "a",
        "\xC3\xA4",
        "\xF0\x9F\x8C\x8D",
        "\"",
        "'",
        "\\",
        "\t",
        "\n",
        "\r\n",
        "a\nb\n",
        "'''\"\"\"",
        std::string("a\0b", 3),
        "\x01\x1F\x7F",
        "true",
        " yes ",
        "off",
        "{",
        "}",
        "{a}{b}@{c}{d}",
        "{c}@",
        "{a}",
        "a@a|b|",
        "@",
        "+a -b",
        "++a --b -",
        "a{b}{c}",
        "0",
        "-0",
        "-0.0",
        "1",
        "-1",
        "7 or so",
        "+5",
        "0x10",
        "1.50",
        "0.1",
        "1e22",
        "1e-7",
        "123456789012345678",
        "12345678901234567890",
        "18446744073709551615",
        "-9223372036854775808",
        "9007199254740993",
        "3.4028235e38",
        "1e-45",
        "4.9e-324",
        "1e400",
        "-1e400",
        "nan",
        "-nan",
        "NaN",
        "inf",
        "-INFINITY",
        "5[0,10]@1",
        "5[0,10]",
        "5",
        "nan[0,1]@-0",
        "5[x",
        "1:2",
        "-0:0",
        "1,2",
        "nan:1",
        "NaN : 2",
        "inf:-inf",
        "1,2,3",
        "1,,3,",
        "-0,nan,-nan,inf",
        "1.5,x,0x1p3",
        "[1,2,3]",
        "[7,8,9]",
        "[1;2]",
        "[1;2;3;4]",
        "[0.1;-0]",
        "[1;nan;2]",
        "1e-9;1e300",
        "{1,2,3}",
        "{1,x,3}",
        "{-0,nan,inf}",
        "<1,2,3>",
        "<0.1,-0,1e-300>",
        "(0.1,0.2,0.3,1)",
        "(0.123456789,1,-0,0.3)",
        "(1,nan)",
        "(1,0.00000001234567)",
        "{1,2,3}@4",
        "{1,-0,3}@-0.1",
        "@nan",
        "[{1,2,3};{4,5,6}]",
        "[{-0,0,0.1};{nan,5,6}]",
        "[?;?]",
        "{0,1,0}{0,0,0}{0,0,1}45",
        "{0.1,-0,1e300}{nan,0,0}{0,0,1}1e-7",
        "1x2",
        "A Frame buffer.",
        "<FONT COLOR=red>no</FONT>",
    };
}
