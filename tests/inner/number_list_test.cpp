// The notation of number lists, its failures told apart: clients see them folded into one status.
#include "values/number_list.h"

#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "values/text.h"

static StatusCode Collect(void *target, uint32_t value)
{
    *static_cast<std::string *>(target) += std::to_string(value) + " ";
    return value == 77 ? -42 : 0;
}

// A text, an arrow, and the values that come of it. There is room for 12.
TEST(NumberList, AppendsInTheOrderOfTheText)
{
    const std::pair<StatusCode, std::vector<std::string>> rows[] = {
        {0,
         {"5 -> 5 ", "(1, 3, :8:2:16, ^1:8) -> 1 3 8 10 12 14 16 1 2 4 8 ",
          "0x10,010,-1,\r7 -> 16 8 4294967295 7 ", "12abc , 09\t,\v7 -> 12 0 7 ", ":0:4:10 -> 0 4 8 ",
          ":9:0:8 -> ", ":-1:0:-1 -> 4294967295 ", ":0xFFFFFFFE:1:0xFFFFFFFF -> 4294967294 4294967295 ",
          ":0xFFFFFFF0:0x10:-1 -> 4294967280 ", "^3:100 -> 3 6 12 24 48 96 ", "^0:8 -> ",
          "^0xC0000000:0xFFFFFFFF -> 3221225472 2147483648 ", "1,,2)3 -> 1 2 3 ", "1(2,3 -> 1 2 3 ",
          "( ,1) -> ", ":1:1:12 -> 1 2 3 4 5 6 7 8 9 10 11 12 "}},
        {-10,
         {":1:0:1 -> ", "1, ,2 -> 1 ", "1,(2 -> 1 ", "(1,2) x -> 1 2 ", ":1:2 -> ", ":1:x:2 -> ", "^4 -> ",
          "0x,1 -> "}},
        {-42, {"1,77,2 -> 1 77 "}},
        {-1,
         {":1:1:13 -> 1 2 3 4 5 6 7 8 9 10 11 12 ", "^1:4096 -> 1 2 4 8 16 32 64 128 256 512 1024 2048 "}}};
    for (const auto &[status, texts] : rows)
        for (const std::string &row : texts) {
            std::string text = row.substr(0, row.find(" -> ")), values;
            uint32_t left = 12;
            EXPECT_EQ(NumberList_Parse(text.data(), &values, Collect, &left), status) << row;
            EXPECT_EQ(" -> " + values, row.substr(row.find(" -> "))) << row;
        }
}

TEST(NumberParse, ReadsWhatDigitsThereAre)
{
    // Text, base, status, value.
    static const std::tuple<const char *, int32_t, StatusCode, uint32_t> rows[] = {
        {" \t+0x1Fg", 0, 0, 31}, {"0x1`@", 0, 0, 1},        {"017", 0, 0, 15},        {"017", 10, 0, 17},
        {"1F", 16, 0, 31},       {"0X1f", 16, 0, 31},       {"1F", 10, 0, 1},         {"0x1F", 10, 0, 0},
        {"", 0, -1, 0},          {"+-1", 0, -1, 0},         {"0x", 16, -1, 0},        {"0xg", 0, -1, 0},
        {"-0x10", 0, 0, -16U},   {"4294967296", 0, 0, ~0U}, {"-99999999999", 0, 0, 1}};
    for (const auto &[text, base, status, expected] : rows) {
        uint32_t value = 55;
        EXPECT_EQ(Number_Parse(text, base, &value), status) << text;
        EXPECT_EQ(value, expected) << text;
    }
}
