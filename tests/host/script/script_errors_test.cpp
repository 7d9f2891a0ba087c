// SPDX-License-Identifier: MIT
// Where errors point and what they say.
#include <gtest/gtest.h>

#include "host/script/fake_host_test.h"

namespace corvanta::script {
namespace {

struct ErrorRow {
  const wchar_t* text;
  uint32_t line, column;
  const wchar_t* message;
};
const ErrorRow kErrors[] = {
    {L"print (1", 1, 7, L"expected `)` to close this `(`, found the end of the text"},
    {L"1 +", 1, 4, L"expected a value, found the end of the text"},
    {L"x = )", 1, 5, L"expected a value, found `)`"},
    {L"if true print 1", 1, 9, L"expected `then` or `do` after the condition, found `print`"},
    {L"for 3 = 1 to 2 do ok", 1, 5, L"expected the name of the loop's variable, found `3`"},
    {L"for i = 1 do ok", 1, 11, L"expected `to` and the end of the range, found `do`"},
    {L"\n\n  while true\n (", 4, 2, L"expected `do` after the condition, found `(`"},
    {L"try (1)\nprint 2", 1, 8, L"expected `catch`, found the end of the line"},
    {L"\"abc", 1, 1, L"the string is not closed, expected `\"`"},
    {L"a = 1\n/* b", 2, 1, L"the comment is not closed, expected `*/`"},
    {L"#", 1, 1, L"expected a name or `(` after `#`"},
    {L"$'abc\n'", 1, 1, L"the quoted name is not closed, expected `'` on this line"},
    {L"1x", 1, 2, L"unexpected `x` in a number"},
    {L"0x", 1, 1, L"expected hexadecimal digits after `0x`"},
    {L"99999999999999999999", 1, 1, L"the number does not fit an integer; write it with a point, as `1e20`"},
    {L"a = 1 2", 1, 7, L"expected a new line or `;`, found `2`"},
    {L"f (1, 2)", 1, 5, L"expected `)`, `;` or a new line (arguments are set apart by blanks), found `,`"},
    {L"#(1 2)", 1, 5, L"expected `,` or `)` in the array, found `2`"},
    {L"[1]", 1, 3, L"expected `,` and the next number of the point, found `]`"},
    {L"x = 5 as nothing", 1, 10,
     L"expected a type (string, integer, float, time, name, boolean, array, point2, point3, point4, "
     L"quat, matrix3, color), found `nothing`"},
    {L"1 = 2", 1, 1, L"this cannot be assigned to; expected a variable, a property or an item"},
    {L"print = 2", 1, 1, L"`print` is built in and cannot be changed; `local print` makes a variable of that name"},
    {L"exit", 1, 1, L"`exit` stands outside of a loop"},
    {L"fn f = 1 + (return 2)", 1, 13,
     L"`return`, `exit` and `continue` must stand as statements, not inside an operand"},
    {L"fn f a a = 1", 1, 8, L"the parameter `a` stands twice"},
    {L"print a:1 a:2", 1, 11, L"the keyword a: stands twice"},
    {L"print a:1 2", 1, 11, L"an argument without a keyword stands after a:"},
    {L"x.(1)", 1, 3, L"expected a property name after `.`, found `(`"},
    {L"\x01", 1, 1, L"unexpected character U+0001"},
    {L"a ? b", 1, 3, L"unexpected character `?`"},
    {L"case 1 of (2 3)", 1, 14, L"expected `:` after the label, found `3`"},
    {L"macroScript m colour:\"x\" ()", 1, 15,
     L"a macroScript has no `colour:`; expected category:, internalCategory:, toolTip:, buttonText: or iconName:"},
    // While running.
    {L"print 1\nfoo.bar", 2, 1, L"unknown name `foo`"},
    {L"a = #(1)\nb = a.size", 2, 7, L"#(1) (Array) has no property `size`"},
    {L"thing.missing", 1, 7, L"<thing> (Fake) has no property `missing`; it has alpha, beta"},
    {L"thing.fixed = 1", 1, 7, L"<thing> (Fake) has no property `fixed`; it has alpha, beta"},
    {L"1 + [1,2]", 0, 0, nullptr},  // a number joins with every component
    {L"x = 3\nx 4", 2, 1, L"`x` is 3 (Integer), not a function"},
    {L"substring \"abc\" \"x\"", 1, 1, L"expected a whole number as argument 2 of substring, got \"x\" (String)"},
    {L"substring \"abc\"", 1, 1, L"substring takes 2 to 3 arguments, got 1"},
    {L"messageBox \"a\" tittle:\"b\"", 1, 1, L"messageBox has no keyword tittle:; it knows title:, beep:"},
    {L"animate on (throw \"x\")", 1, 13, L"x"},
    {L"at time \"x\" (1)", 1, 9, L"expected a time such as 10f, got \"x\" (String)"},
    {L"for i in 5 do ok", 1, 10, L"expected an array to walk, got 5 (Integer)"},
    {L"(1).x.y = 3", 1, 5, L"1 (Integer) has no property `x`"},
    {L"[1,2,3].x = 3", 1, 9, L"a part of a value that has no name cannot be assigned"},
};

void AddThing(FakeHost& host) {
  auto* thing = new FakeObject(L"thing");
  host.globals[L"thing"] = Value::Object(thing);
  thing->properties = {{L"alpha", Value::Int(1)}, {L"beta", Value::Int(2)}};
}

TEST(ScriptErrors, PointAtTheirPlace) {
  for (const ErrorRow& row : kErrors) {
    SCOPED_TRACE(ToUtf8(row.text));
    FakeHost host;
    AddThing(host);
    Interpreter vm(host);
    const RunResult result = vm.Run(row.text, L"test.cvs");
    EXPECT_EQ(result.ok, row.message == nullptr);
    EXPECT_EQ(ToUtf8(result.message), row.message ? ToUtf8(row.message) : "");
    EXPECT_EQ(result.pos.line, row.line);
    EXPECT_EQ(result.pos.column, row.column);
  }
}

TEST(ScriptErrors, ReportShowsTheLineAndACaret) {
  FakeHost host;
  Interpreter vm(host);
  EXPECT_EQ(ToUtf8(vm.Run(L"a = 1\n\tprint (a + #x)\nb = 2", L"walk.cvs").report),
            "walk.cvs:2:11: cannot apply + to 1 (Integer) and #x (Name)\n\tprint (a + #x)\n\t         ^");
  // An error inside a function names the text the function came from.
  EXPECT_TRUE(vm.Run(L"fn half x = x / 2", L"lib.cvs").ok);
  EXPECT_EQ(ToUtf8(vm.Run(L"half \"a\"", L"main.cvs").report).substr(0, 13), "lib.cvs:1:15:");
  // A long line is cut around the place.
  const WStr report = vm.Run(WStr(5000, L' ') + L"?" + WStr(5000, L' '), L"long").report;
  EXPECT_LT(report.size(), 400u);
  const size_t caret = report.rfind(L'^'), line = report.rfind(L'\n') + 1;
  EXPECT_EQ(report[report.find(L'\n') + 1 + (caret - line)], L'?');
}

TEST(ScriptErrors, UncaughtInsideContextsStillCloseThem) {
  FakeHost host;
  Interpreter vm(host);
  EXPECT_FALSE(vm.Run(L"undo \"step\" on (animate on (at time 5 (redraw off (throw \"x\"))))", L"test").ok);
  EXPECT_EQ(ToUtf8(host.log), "begin animate time:1000 dark /redraw /time /animate accept:step ");
}

}  // namespace
}  // namespace corvanta::script
