// SPDX-License-Identifier: MIT
// Expressions. Statements are in parser_statements.cpp.
#include "host/script/parser.h"

#include <algorithm>

#include "host/script/builtins.h"
#include "host/script/parser_nesting.h"

namespace corvanta::script {

namespace {

constexpr size_t kLongestText = 4'000'000;
constexpr uint32_t kMaxHeight = 1500;

struct OperatorRow {
  Tok token;
  BinaryOp op;
  int level;
};
const OperatorRow kOperators[] = {
    {Tok::Equal, BinaryOp::Equal, 3},
    {Tok::NotEqual, BinaryOp::NotEqual, 3},
    {Tok::Less, BinaryOp::Less, 3},
    {Tok::Greater, BinaryOp::Greater, 3},
    {Tok::LessEqual, BinaryOp::LessEqual, 3},
    {Tok::GreaterEqual, BinaryOp::GreaterEqual, 3},
    {Tok::Plus, BinaryOp::Add, 4},
    {Tok::Minus, BinaryOp::Subtract, 4},
    {Tok::Star, BinaryOp::Multiply, 5},
    {Tok::Slash, BinaryOp::Divide, 5},
};
constexpr int kTightest = 6;

const OperatorRow* FindOperator(Tok token, int level) {
  for (const OperatorRow& row : kOperators)
    if (row.token == token && row.level == level) return &row;
  return nullptr;
}

const OperatorRow* FindUpdate(Tok token) {
  static const OperatorRow kUpdates[] = {{Tok::AddAssign, BinaryOp::Add, 0},
                                         {Tok::SubtractAssign, BinaryOp::Subtract, 0},
                                         {Tok::MultiplyAssign, BinaryOp::Multiply, 0},
                                         {Tok::DivideAssign, BinaryOp::Divide, 0}};
  for (const OperatorRow& row : kUpdates)
    if (row.token == token) return &row;
  return nullptr;
}

}  // namespace

Parser::Nesting::Nesting(Parser& parser) : parser_(parser) {
  constexpr int kDeepest = 200;
  if (++parser_.nesting_ > kDeepest) {
    --parser_.nesting_;
    throw ScriptError(L"the text is nested too deeply", parser_.Peek().pos);
  }
}
Parser::Nesting::~Nesting() { --parser_.nesting_; }

Parser::Parser(Interpreter& vm, SourcePtr source) : vm_(vm), source_(std::move(source)), tokens_(Scan(*source_)) {}

std::shared_ptr<const FunctionCode> Parse(Interpreter& vm, const SourcePtr& source) {
  try {
    if (source->text.size() > kLongestText)
      throw ScriptError(L"the text is longer than 4,000,000 characters", Pos{1, 1});
    return Parser(vm, source).Program();
  } catch (ScriptError& error) {
    error.SetSource(source);
    throw;
  }
}

std::shared_ptr<const FunctionCode> Parser::Program() {
  FunctionScope scope(nullptr);
  scope_ = &scope;
  scope.OpenBlock();
  auto block = std::make_unique<BlockNode>(Peek().pos);
  for (SkipSeparators(); !Is(Tok::End); SkipSeparators()) {
    block->statements.push_back(Under(*block, Expression()));
    if (!Is(Tok::Newline) && !Is(Tok::Semicolon) && !Is(Tok::End)) Unexpected(L"a new line or `;`");
  }
  auto code = std::make_shared<FunctionCode>();
  code->name = source_->name;
  code->source = source_;
  code->slotCount = scope.slotCount();
  code->body = std::move(block);
  // A class keeps its meaning until a variable of its name gets a value.
  Value builtin;
  for (const int index : assigned_)
    if (vm_.Global(index).Is(Kind::Unset) && !FindBuiltin(vm_.GlobalName(index), builtin) &&
        vm_.host().FindGlobal(vm_.GlobalName(index)) == GlobalUse::None)
      vm_.Global(index) = Value();
  return code;
}

// Tokens.

bool Parser::Accept(Tok kind) {
  if (!Is(kind)) return false;
  Take();
  return true;
}
bool Parser::Accept(Reserved word) {
  if (!Is(word)) return false;
  Take();
  return true;
}
const Token& Parser::Expect(Tok kind, const wchar_t* expected) {
  if (!Is(kind)) Unexpected(expected);
  return Take();
}
void Parser::Expect(Reserved word, const wchar_t* expected) {
  if (!Accept(word)) Unexpected(expected);
}
void Parser::SkipNewlines() {
  while (Is(Tok::Newline)) Take();
}
void Parser::SkipSeparators() {
  while (Is(Tok::Newline) || Is(Tok::Semicolon)) Take();
}
// `word` on this line or after empty lines; otherwise nothing is taken.
bool Parser::AcceptAfterNewlines(Reserved word) {
  const size_t before = at_;
  SkipNewlines();
  if (Accept(word)) return true;
  at_ = before;
  return false;
}
void Parser::Unexpected(const wchar_t* expected) const {
  throw ScriptError(L"expected " + WStr(expected) + L", found " + TokenText(Peek(), *source_), Peek().pos);
}

void Parser::Raise(Node& parent, const Node& child) const {
  parent.height = std::max(parent.height, child.height + 1);
  if (parent.height > kMaxHeight) throw ScriptError(L"the expression is too long, split it into statements", child.pos);
}
NodePtr Parser::Under(Node& parent, NodePtr child) const {
  Raise(parent, *child);
  return child;
}

void Parser::RefuseJumps(size_t mark) const {
  if (jumps_.size() > mark)
    throw ScriptError(L"`return`, `exit` and `continue` must stand as statements, not inside an operand", jumps_[mark]);
}

// Expressions.

NodePtr Parser::Expression() {
  const Nesting nesting(*this);
  bool found = false;
  NodePtr statement = Statement(found);
  return found ? std::move(statement) : Assignment();
}

NodePtr Parser::ValueExpression() {
  const size_t mark = jumps_.size();
  NodePtr node = Expression();
  RefuseJumps(mark);
  return node;
}

NodePtr Parser::Assignment() {
  const size_t mark = jumps_.size();
  const Token& first = Peek();
  NodePtr target;
  // A name to the left of `=` need not be known yet.
  if (IsVariableName(first) && (Peek(1).kind == Tok::Assign || FindUpdate(Peek(1).kind))) {
    Take();
    target = scope_->Resolve(first.text, first.pos);
    if (!target) target = GlobalVariable(first.text, first.pos);
  } else {
    target = Binary(1);
  }
  if (!target->PassesSignals()) RefuseJumps(mark);
  const Token& sign = Peek();
  const OperatorRow* update = FindUpdate(sign.kind);
  if (sign.kind != Tok::Assign && !update) return target;
  if (!target->AsAssignable())
    throw ScriptError(L"this cannot be assigned to; expected a variable, a property or an item", target->pos);
  RefuseJumps(mark);
  Take();
  SkipNewlines();
  NodePtr value = Expression();
  NodePtr node;
  const uint32_t height = std::max(target->height, value->height);
  if (update)
    node = std::make_unique<UpdateNode>(sign.pos, update->op, std::move(target), std::move(value));
  else
    node = std::make_unique<AssignNode>(sign.pos, std::move(target), std::move(value));
  node->height = height + 1;
  return node;
}

// Levels: 1 or, 2 and, 3 comparison, 4 sums, 5 products.
NodePtr Parser::Binary(int level) {
  if (level >= kTightest) return Power();
  const size_t mark = jumps_.size();
  NodePtr left = level == 3 ? Not() : Binary(level + 1);
  for (;;) {
    const Token& token = Peek();
    const OperatorRow* row = FindOperator(token.kind, level);
    const bool logical = (level == 1 && Is(Reserved::Or)) || (level == 2 && Is(Reserved::And));
    if (!row && !logical) return left;
    Take();
    SkipNewlines();
    NodePtr right = level == 3 ? Binary(4) : Binary(level + 1);
    RefuseJumps(mark);
    const uint32_t height = std::max(left->height, right->height);
    if (logical)
      left = std::make_unique<LogicalNode>(token.pos, level == 2, std::move(left), std::move(right));
    else
      left = std::make_unique<BinaryNode>(token.pos, row->op, std::move(left), std::move(right));
    left->height = height + 1;
    if (left->height > kMaxHeight)
      throw ScriptError(L"the expression is too long, split it into statements", token.pos);
  }
}

NodePtr Parser::Not() {
  if (!Is(Reserved::Not)) return Binary(4);
  const Nesting nesting(*this);
  const size_t mark = jumps_.size();
  const Pos pos = Take().pos;
  NodePtr operand = Is(Reserved::Not) ? Not() : Binary(3);
  RefuseJumps(mark);
  const uint32_t height = operand->height;
  NodePtr node = std::make_unique<NotNode>(pos, std::move(operand));
  node->height = height + 1;
  return node;
}

NodePtr Parser::Power() {
  const size_t mark = jumps_.size();
  NodePtr left = Conversion();
  if (!Is(Tok::Caret)) return left;
  const Nesting nesting(*this);
  const Pos pos = Take().pos;
  SkipNewlines();
  NodePtr right = Power();
  RefuseJumps(mark);
  const uint32_t height = std::max(left->height, right->height);
  NodePtr node = std::make_unique<BinaryNode>(pos, BinaryOp::Power, std::move(left), std::move(right));
  node->height = height + 1;
  return node;
}

NodePtr Parser::Conversion() {
  const size_t mark = jumps_.size();
  NodePtr operand = Unary();
  while (Is(Reserved::As)) {
    RefuseJumps(mark);
    const Pos pos = Take().pos;
    ConversionType type{};
    if (!Is(Tok::Word) || !FindConversion(Peek().text, type))
      Unexpected(
          L"a type (string, integer, float, time, name, boolean, array, point2, point3, point4, quat, matrix3, color)");
    Take();
    const uint32_t height = operand->height;
    operand = std::make_unique<ConvertNode>(pos, std::move(operand), type);
    operand->height = height;
    Raise(*operand, *static_cast<ConvertNode&>(*operand).operand);
  }
  return operand;
}

NodePtr Parser::Unary() {
  if (!Is(Tok::Minus)) return CallExpression();
  const Nesting nesting(*this);
  const size_t mark = jumps_.size();
  const Pos pos = Take().pos;
  NodePtr operand = Unary();
  RefuseJumps(mark);
  const uint32_t height = operand->height;
  NodePtr node = std::make_unique<NegateNode>(pos, std::move(operand));
  node->height = height + 1;
  return node;
}

// Whether the next token begins an argument of a call by juxtaposition. A minus does when a blank stands
// before it and none after it: `f -1`.
bool Parser::ArgumentFollows(bool minusToo) const {
  const Token& token = Peek();
  switch (token.kind) {
    case Tok::Number:
    case Tok::String:
    case Tok::Name:
    case Tok::NodePath:
    case Tok::Keyword:
    case Tok::LeftParen:
    case Tok::ArrayOpen:
      return true;
    case Tok::LeftBracket:
      return token.spaceBefore;
    case Tok::Ampersand:
      return token.spaceBefore && !Peek(1).spaceBefore && IsVariableName(Peek(1));
    case Tok::Minus:
      return minusToo && token.spaceBefore && !Peek(1).spaceBefore && Peek(1).kind != Tok::Newline;
    case Tok::Word:
      return token.word == Reserved::None || token.word == Reserved::True || token.word == Reserved::False ||
             token.word == Reserved::On || token.word == Reserved::Off || token.word == Reserved::Undefined ||
             token.word == Reserved::Ok;
    default:
      return false;
  }
}

NodePtr Parser::CallExpression() {
  const size_t mark = jumps_.size();
  const size_t start = Peek().start;
  const bool named = Is(Tok::Word);
  bool callable = false;
  NodePtr callee = Primary(callable);
  callee = Accessors(std::move(callee), start, callable);
  if (!callable || !ArgumentFollows(named)) return callee;
  RefuseJumps(mark);
  auto call = std::make_unique<CallNode>(callee->pos, std::move(callee));
  Raise(*call, *call->callee);
  call->calleeText = TextFrom(start);
  call->minusArgument = Is(Tok::Minus);
  while (ArgumentFollows(true)) Argument(*call);
  return call;
}

// The text from `start` to the last token taken, for messages.
WStr Parser::TextFrom(size_t start) const {
  constexpr size_t kShown = 60;
  const size_t end = at_ > 0 ? tokens_[at_ - 1].end : start;
  return L"`" + source_->text.substr(start, std::min(kShown, end - start)) + L"`";
}

void Parser::Argument(CallNode& call) {
  constexpr size_t kMostArguments = 250;
  const size_t mark = jumps_.size();
  if (call.args.size() >= kMostArguments) throw ScriptError(L"a call takes at most 250 arguments", Peek().pos);
  if (Is(Tok::Keyword)) {
    const Token& keyword = Take();
    for (const WStr& known : call.keywords)
      if (known == keyword.text) throw ScriptError(L"the keyword " + known + L": stands twice", keyword.pos);
    call.keywords.push_back(keyword.text);
    call.args.push_back(Under(call, Operand()));
  } else {
    if (!call.keywords.empty())
      throw ScriptError(L"an argument without a keyword stands after " + call.keywords.back() + L":", Peek().pos);
    call.args.push_back(Under(call, Is(Tok::Ampersand) ? Reference() : Operand()));
  }
  RefuseJumps(mark);
}

// A literal, a name or something in parentheses with its properties and items; a minus before it belongs to it.
NodePtr Parser::Operand() {
  const Nesting nesting(*this);
  if (Is(Tok::Minus)) {
    const Pos pos = Take().pos;
    NodePtr inner = Operand();
    const uint32_t height = inner->height;
    NodePtr node = std::make_unique<NegateNode>(pos, std::move(inner));
    node->height = height + 1;
    return node;
  }
  const size_t start = Peek().start;
  const size_t mark = jumps_.size();
  bool callable = false;
  NodePtr primary = Primary(callable);
  NodePtr node = Accessors(std::move(primary), start, callable);
  RefuseJumps(mark);
  return node;
}

NodePtr Parser::Accessors(NodePtr node, size_t start, bool& callable) {
  const size_t mark = jumps_.size();
  for (;;) {
    const Token& token = Peek();
    NodePtr next;
    if (token.kind == Tok::Dot) {
      Take();
      if (!Is(Tok::Word)) Unexpected(L"a property name after `.`");
      const Token& name = Take();
      next = std::make_unique<PropertyNode>(name.pos, std::move(node), name.text);
      Raise(*next, *static_cast<PropertyNode&>(*next).object);
      callable = true;
    } else if (token.kind == Tok::LeftBracket && !token.spaceBefore) {
      Take();
      SkipNewlines();
      NodePtr key = ValueExpression();
      SkipNewlines();
      Expect(Tok::RightBracket, L"`]`");
      const uint32_t keyHeight = key->height;
      next = std::make_unique<IndexNode>(token.pos, std::move(node), std::move(key));
      next->height = keyHeight + 1;
      Raise(*next, *static_cast<IndexNode&>(*next).object);
      callable = true;
    } else if (callable && token.kind == Tok::LeftParen && Peek(1).kind == Tok::RightParen) {
      const WStr text = TextFrom(start);
      Take();
      Take();
      auto call = std::make_unique<CallNode>(node->pos, std::move(node));
      Raise(*call, *call->callee);
      call->calleeText = text;
      next = std::move(call);
      callable = false;
    } else {
      return node;
    }
    RefuseJumps(mark);
    node = std::move(next);
  }
}

NodePtr Parser::Reference() {
  const Pos pos = Take().pos;
  const Token& token = Take();
  auto node = std::make_unique<ReferenceNode>(pos);
  if (Variable* variable = scope_->Find(token.text)) {
    FunctionScope::Box(*variable);
    node->variable = FunctionScope::Use(*variable, token.pos);
  } else if (auto captured = scope_->Resolve(token.text, token.pos)) {
    node->variable = std::move(captured);
  } else {
    node->variable = GlobalVariable(token.text, token.pos);
    if (!dynamic_cast<GlobalNode*>(node->variable.get()))
      throw ScriptError(L"`" + token.text + L"` cannot be passed by reference, expected a variable", token.pos);
  }
  return node;
}

NodePtr Parser::Primary(bool& callable) {
  const Token& token = Peek();
  switch (token.kind) {
    case Tok::Number:
      return std::make_unique<ConstantNode>(token.pos, Take().value);
    case Tok::String:
      return std::make_unique<ConstantNode>(token.pos, Value::String(Take().text));
    case Tok::Name:
      return std::make_unique<ConstantNode>(token.pos, Value::Name(Take().text));
    case Tok::NodePath:
      Take();
      return std::make_unique<PathNode>(token.pos, token.text, token.quoted);
    case Tok::LeftParen:
      callable = true;
      return Block();
    case Tok::ArrayOpen:
      return ArrayLiteral();
    case Tok::LeftBracket:
      return PointLiteral();
    case Tok::Word:
      if (token.word != Reserved::None) return ReservedValue();
      callable = true;
      Take();
      return Name(token);
    default:
      Unexpected(L"a value");
  }
}

NodePtr Parser::ReservedValue() {
  const Token& token = Peek();
  Value value;
  switch (token.word) {
    case Reserved::True:
    case Reserved::On:
      value = Value::Bool(true);
      break;
    case Reserved::False:
    case Reserved::Off:
      value = Value::Bool(false);
      break;
    case Reserved::Ok:
      value = Value::Ok();
      break;
    case Reserved::Undefined:
      break;
    default:
      Unexpected(L"a value (statements stand in parentheses here)");
  }
  Take();
  return std::make_unique<ConstantNode>(token.pos, value);
}

NodePtr Parser::Name(const Token& token) {
  if (auto local = scope_->Resolve(token.text, token.pos)) return local;
  Value builtin;
  if (FindBuiltin(token.text, builtin) && !builtin.Is(Kind::Class))
    return std::make_unique<ConstantNode>(token.pos, builtin);
  const GlobalUse use = vm_.host().FindGlobal(token.text);
  if (use == GlobalUse::ReadOnly || use == GlobalUse::Writable)
    return std::make_unique<HostGlobalNode>(token.pos, token.text);
  return std::make_unique<GlobalNode>(token.pos, vm_.GlobalIndex(token.text));
}

// A global that gets a value here.
std::unique_ptr<Assignable> Parser::GlobalVariable(const WStr& name, Pos pos) {
  Value builtin;
  const GlobalUse use = vm_.host().FindGlobal(name);
  if (use == GlobalUse::Writable) return std::make_unique<HostGlobalNode>(pos, name);
  if (use == GlobalUse::ReadOnly || (FindBuiltin(name, builtin) && !builtin.Is(Kind::Class)))
    throw ScriptError(
        L"`" + name + L"` is built in and cannot be changed; `local " + name + L"` makes a variable of that name", pos);
  const int index = vm_.GlobalIndex(name);
  assigned_.push_back(index);
  return std::make_unique<GlobalNode>(pos, index);
}

NodePtr Parser::Block() {
  const Nesting nesting(*this);
  const Token open = Take();
  scope_->OpenBlock();
  auto block = std::make_unique<BlockNode>(open.pos);
  for (SkipSeparators(); !Is(Tok::RightParen); SkipSeparators()) {
    if (Is(Tok::End)) throw ScriptError(L"expected `)` to close this `(`, found the end of the text", open.pos);
    block->statements.push_back(Under(*block, Expression()));
    if (Is(Tok::Comma)) Unexpected(L"`)`, `;` or a new line (arguments are set apart by blanks)");
    if (!Is(Tok::Newline) && !Is(Tok::Semicolon) && !Is(Tok::RightParen) && !Is(Tok::End))
      Unexpected(L"`)`, `;` or a new line");
  }
  Take();
  scope_->CloseBlock();
  return block;
}

NodePtr Parser::ArrayLiteral() {
  const Nesting nesting(*this);
  auto array = std::make_unique<ArrayNode>(Take().pos);
  SkipNewlines();
  while (!Is(Tok::RightParen)) {
    array->items.push_back(Under(*array, ValueExpression()));
    SkipNewlines();
    if (!Accept(Tok::Comma) && !Is(Tok::RightParen)) Unexpected(L"`,` or `)` in the array");
    SkipNewlines();
  }
  Take();
  return array;
}

NodePtr Parser::PointLiteral() {
  const Nesting nesting(*this);
  auto point = std::make_unique<PointNode>(Take().pos);
  SkipNewlines();
  for (;;) {
    point->items.push_back(Under(*point, ValueExpression()));
    SkipNewlines();
    const size_t count = point->items.size();
    if (count >= 2 && Accept(Tok::RightBracket)) return point;
    if (count == 4) Unexpected(L"`]` after four numbers");
    if (!Accept(Tok::Comma)) Unexpected(count < 2 ? L"`,` and the next number of the point" : L"`,` or `]`");
    SkipNewlines();
  }
}

}  // namespace corvanta::script
