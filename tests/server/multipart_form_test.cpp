#include "server/multipart_form.h"

#include <string>

#include <gtest/gtest.h>

namespace quietlark {
namespace {

constexpr std::string_view type = "multipart/form-data; boundary=B";

std::string part(std::string_view name, std::string_view content) {
    return "--B\r\nContent-Disposition: form-data; name=\"" + std::string(name) + "\"\r\n\r\n" +
           std::string(content) + "\r\n";
}

/// The fields of a form as "name=content" with a blank after each; "broken" if it is.
std::string fieldsOf(std::string_view body, std::string_view contentType = type) {
    const auto fields = multipartFields(contentType, body);
    if (!fields) return "broken";
    std::string text;
    for (const auto& [name, content] : *fields)
        text += std::string(name) + "=" + std::string(content) + " ";
    return text;
}

/// Of a form of one field with this line before its content.
std::string fieldUnder(std::string_view line) {
    return fieldsOf("--B\r\n" + std::string(line) + "\r\n\r\nx\r\n--B--\r\n");
}

}  // namespace

TEST(MultipartFormTest, TheMediaTypeIsKnownInAnyCase) {
    EXPECT_TRUE(isMultipartForm("multipart/form-data; boundary=B"));
    EXPECT_TRUE(isMultipartForm("Multipart/Form-Data ;boundary=B"));
    EXPECT_FALSE(isMultipartForm("multipart/form-database; boundary=B"));
    EXPECT_FALSE(isMultipartForm("multipart/mixed; boundary=B"));
    EXPECT_FALSE(isMultipartForm(""));
}

TEST(MultipartFormTest, EachFieldHasItsContent) {
    EXPECT_EQ(fieldsOf(part("a", "1") + part("b", "two\r\nlines") + "--B--\r\n"),
              "a=1 b=two\r\nlines ");
}

TEST(MultipartFormTest, FieldsOfTheSameNameStayInOrder) {
    EXPECT_EQ(fieldsOf(part("a", "2") + part("a", "1") + "--B--"), "a=2 a=1 ");
}

TEST(MultipartFormTest, AFieldMayBeEmpty) {
    EXPECT_EQ(fieldsOf(part("a", "") + "--B--"), "a= ");
}

TEST(MultipartFormTest, ContentMayHoldAnyBytes) {
    const std::string content("\0\xff--\r\r\n\n--\r\n-", 13);
    EXPECT_EQ(fieldsOf(part("a", content) + "--B--"), "a=" + content + " ");
}

TEST(MultipartFormTest, ContentThatOnlyBeginsLikeABoundaryIsContent) {
    EXPECT_EQ(fieldsOf(part("a", "1\r\n--Bogus\r\n--B-\r\n--") + "--B--"),
              "a=1\r\n--Bogus\r\n--B-\r\n-- ");
    EXPECT_EQ(fieldsOf(part("a", "--B--") + "--B--"), "a=--B-- ");
}

TEST(MultipartFormTest, WhatPrecedesTheFirstBoundaryAndFollowsTheLastIsIgnored) {
    EXPECT_EQ(fieldsOf("a preamble\r\n" + part("a", "1") + "--B--\r\nan epilogue"), "a=1 ");
    EXPECT_EQ(fieldsOf("--Bogus\r\n" + part("a", "1") + "--B--"), "a=1 ");
    EXPECT_EQ(fieldsOf("\r\n" + part("a", "1") + "--B--"), "a=1 ");
}

TEST(MultipartFormTest, BlanksMayFollowABoundary) {
    EXPECT_EQ(fieldsOf("--B \t\r\nContent-Disposition: form-data; name=a\r\n\r\n1\r\n--B-- \r\n"),
              "a=1 ");
}

TEST(MultipartFormTest, TheBoundaryMayBeQuotedAndNamedInAnyCase) {
    const std::string form =
        "--a b:c\r\nContent-Disposition: form-data; name=n\r\n\r\n1\r\n--a b:c--";
    EXPECT_EQ(fieldsOf(form, "multipart/form-data; boundary=\"a b:c\""), "n=1 ");
    EXPECT_EQ(fieldsOf(form, "multipart/form-data; x=\";boundary=B\"; BOUNDARY=\"a b:c\""), "n=1 ");
}

TEST(MultipartFormTest, ABoundaryThatIsMissingOrTooLongBreaksTheForm) {
    const std::string form = part("a", "1") + "--B--";
    EXPECT_EQ(fieldsOf(form, "multipart/form-data"), "broken");
    EXPECT_EQ(fieldsOf(form, "multipart/form-data; boundary="), "broken");
    EXPECT_EQ(fieldsOf(form, "multipart/form-data; boundary=\"\""), "broken");
    const std::string longest(70, 'b');
    const auto formOf = [](const std::string& boundary) {
        return "--" + boundary + "\r\nContent-Disposition: form-data; name=a\r\n\r\n1\r\n--" +
               boundary + "--";
    };
    EXPECT_EQ(fieldsOf(formOf(longest), "multipart/form-data; boundary=" + longest), "a=1 ");
    EXPECT_EQ(fieldsOf(formOf(longest + "b"), "multipart/form-data; boundary=" + longest + "b"),
              "broken");
}

TEST(MultipartFormTest, HeadersAreKnownInAnyCaseAmongOthers) {
    EXPECT_EQ(fieldUnder("CONTENT-DISPOSITION:FORM-DATA;NAME=a"), "a=x ");
    EXPECT_EQ(fieldUnder("Content-Type: text/plain; name=b\r\ncontent-disposition : form-data ; "
                         "name = \"a\"\r\nX: y"),
              "a=x ");
}

TEST(MultipartFormTest, AFileNameMayHoldQuotesAndSemicolons) {
    EXPECT_EQ(fieldUnder(R"(Content-Disposition: form-data; filename="a\"; name=\"b"; name="a")"),
              "a=x ");
    EXPECT_EQ(fieldUnder(R"(Content-Disposition: form-data; name="a"; filename="C:\x\")"), "a=x ");
    EXPECT_EQ(fieldUnder(R"(Content-Disposition: form-data; filename*=UTF-8''b; name="a;b=c")"),
              "a;b=c=x ");
}

TEST(MultipartFormTest, APartWithoutANameBreaksTheForm) {
    EXPECT_EQ(fieldUnder("Content-Disposition: form-data"), "broken");
    EXPECT_EQ(fieldUnder("Content-Disposition: attachment; name=a"), "broken");
    EXPECT_EQ(fieldUnder("Content-Type: text/plain"), "broken");
    EXPECT_EQ(fieldUnder("no header"), "broken");
    EXPECT_EQ(fieldsOf("--B\r\n\r\nx\r\n--B--"), "broken");
}

TEST(MultipartFormTest, APartWithoutContentDoesNotBorrowThatOfTheNext) {
    EXPECT_EQ(fieldsOf("--B\r\nX: y\r\n" + part("a", "1") + "--B--"), "broken");
    EXPECT_EQ(fieldsOf("--B\r\n" + part("a", "1") + "--B--"), "broken");
}

TEST(MultipartFormTest, AFormWithoutFieldsIsBroken) {
    for (const char* body : {"", "--", "--B", "--B--", "--B--\r\n", "\r\n--B--", "no form at all"})
        EXPECT_EQ(fieldsOf(body), "broken") << body;
}

TEST(MultipartFormTest, AFormThatIsCutShortAnywhereIsBroken) {
    const std::string whole = part("a", "1") + part("b", "2") + "--B--";
    ASSERT_EQ(fieldsOf(whole), "a=1 b=2 ");
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(fieldsOf(whole.substr(0, length)), "broken") << length;
}

TEST(MultipartFormTest, LinesMustEndAsTheyShould) {
    EXPECT_EQ(fieldsOf("--B\nContent-Disposition: form-data; name=a\n\n1\n--B--\n"), "broken");
}

TEST(MultipartFormTest, ThereIsABoundToTheNumberOfFields) {
    std::string form;
    for (int i = 0; i < 1024; ++i)
        form += part("a", "1");
    EXPECT_EQ(multipartFields(type, form + "--B--")->size(), 1024U);
    EXPECT_EQ(fieldsOf(form + part("a", "1") + "--B--"), "broken");
}

}  // namespace quietlark
