// SPDX-License-Identifier: MIT
#include "host/script/parser_nesting.h"

namespace corvanta::script {

// `found` stays false when no statement word stands here.
NodePtr Parser::Statement(bool& found) {
  if (!Is(Tok::Word)) return nullptr;
  found = true;
  switch (Peek().word) {
    case Reserved::If:
      return If();
    case Reserved::For:
      return For();
    case Reserved::While:
      return While();
    case Reserved::Do:
      return DoWhile();
    case Reserved::Case:
      return Case();
    case Reserved::Try:
      return Try();
    case Reserved::Throw:
      return Throw();
    case Reserved::Return:
    case Reserved::Exit:
    case Reserved::Continue:
      return Jump();
    case Reserved::Fn:
      return Function();
    case Reserved::Local:
      return Locals();
    case Reserved::Global:
      return Globals();
    case Reserved::None:
      if (ContextFollows()) return Context();
      if (Peek().text == L"macroscript" && IsVariableName(Peek(1))) return Macro();
      break;
    default:
      break;
  }
  found = false;
  return nullptr;
}

NodePtr Parser::If() {
  auto node = std::make_unique<IfNode>(Take().pos);
  node->condition = Under(*node, ValueExpression());
  SkipNewlines();
  const bool withElse = Accept(Reserved::Then);
  if (!withElse) Expect(Reserved::Do, L"`then` or `do` after the condition");
  SkipNewlines();
  node->then = Under(*node, Expression());
  if (withElse && AcceptAfterNewlines(Reserved::Else)) {
    SkipNewlines();
    node->otherwise = Under(*node, Expression());
  }
  return node;
}

NodePtr Parser::LoopBody() {
  SkipNewlines();
  ++scope_->loopDepth;
  NodePtr body = Expression();
  --scope_->loopDepth;
  return body;
}

NodePtr Parser::For() {
  auto node = std::make_unique<ForNode>(Take().pos);
  if (!IsVariableName(Peek())) Unexpected(L"the name of the loop's variable");
  const Token& name = Take();
  if (Accept(Tok::Assign)) {
    node->from = Under(*node, ValueExpression());
    SkipNewlines();
    Expect(Reserved::To, L"`to` and the end of the range");
    node->to = Under(*node, ValueExpression());
    if (Accept(Reserved::By)) node->by = Under(*node, ValueExpression());
  } else {
    Expect(Reserved::In, L"`=` or `in` after the loop's variable");
    node->from = Under(*node, ValueExpression());
  }
  scope_->OpenBlock();
  Variable& variable = scope_->Declare(name.text);
  node->slot = variable.slot;
  variable.flags.push_back(&node->boxed);
  NodePtr whole = ForTail(std::move(node));
  scope_->CloseBlock();
  return whole;
}

NodePtr Parser::ForTail(std::unique_ptr<ForNode> node) {
  if (Accept(Reserved::While)) node->whileCondition = Under(*node, ValueExpression());
  if (Accept(Reserved::Where)) node->where = Under(*node, ValueExpression());
  SkipNewlines();
  node->collect = Accept(Reserved::Collect);
  if (!node->collect) Expect(Reserved::Do, L"`do` or `collect`");
  node->body = Under(*node, LoopBody());
  return node;
}

NodePtr Parser::While() {
  auto node = std::make_unique<WhileNode>(Take().pos);
  node->condition = Under(*node, ValueExpression());
  SkipNewlines();
  Expect(Reserved::Do, L"`do` after the condition");
  node->body = Under(*node, LoopBody());
  return node;
}

NodePtr Parser::DoWhile() {
  auto node = std::make_unique<WhileNode>(Take().pos);
  node->bodyFirst = true;
  node->body = Under(*node, LoopBody());
  SkipNewlines();
  Expect(Reserved::While, L"`while` after the body of `do`");
  node->condition = Under(*node, ValueExpression());
  return node;
}

NodePtr Parser::Case() {
  auto node = std::make_unique<CaseNode>(Take().pos);
  if (!Is(Reserved::Of)) node->subject = Under(*node, ValueExpression());
  Expect(Reserved::Of, L"`of`");
  SkipNewlines();
  Expect(Tok::LeftParen, L"`(` before the branches of `case`");
  const Nesting nesting(*this);
  for (SkipSeparators(); !Accept(Tok::RightParen); SkipSeparators()) {
    CaseNode::Branch branch;
    if (Is(Tok::Keyword)) {
      const Token& label = Take();  // "name:" scans as a keyword
      if (label.text != L"default") {
        if (label.word != Reserved::None && label.word != Reserved::True && label.word != Reserved::False)
          throw ScriptError(L"expected a label, found `" + label.text + L":`", label.pos);
        branch.label = label.word == Reserved::None
                           ? Name(label)
                           : std::make_unique<ConstantNode>(label.pos, Value::Bool(label.word == Reserved::True));
      }
    } else {
      branch.label = Under(*node, ValueExpression());
      Expect(Tok::Colon, L"`:` after the label");
    }
    SkipNewlines();
    branch.body = Under(*node, Expression());
    node->branches.push_back(std::move(branch));
    if (!Is(Tok::Newline) && !Is(Tok::Semicolon) && !Is(Tok::RightParen))
      Unexpected(L"a new line, `;` or `)` after the branch");
  }
  return node;
}

NodePtr Parser::Try() {
  auto node = std::make_unique<TryNode>(Take().pos);
  SkipNewlines();
  node->body = Under(*node, Expression());
  if (!AcceptAfterNewlines(Reserved::Catch)) Unexpected(L"`catch`");
  SkipNewlines();
  node->handler = Under(*node, Expression());
  return node;
}

NodePtr Parser::Throw() {
  auto node = std::make_unique<ThrowNode>(Take().pos);
  if (Is(Tok::LeftParen) && Peek(1).kind == Tok::RightParen) {
    Take();
    Take();
  } else if (ArgumentFollows(true)) {
    node->text = Under(*node, ValueExpression());
  }
  return node;
}

NodePtr Parser::Jump() {
  const Token& token = Take();
  const Signal signal = token.word == Reserved::Return ? Signal::Return
                        : token.word == Reserved::Exit ? Signal::Exit
                                                       : Signal::Continue;
  if (signal != Signal::Return && scope_->loopDepth == 0)
    throw ScriptError(L"`" + token.text + L"` stands outside of a loop", token.pos);
  auto node = std::make_unique<JumpNode>(token.pos, signal);
  if (signal == Signal::Return) {
    if (Is(Tok::LeftParen) && Peek(1).kind == Tok::RightParen) {
      Take();
      Take();
    } else if (!Is(Tok::Newline) && !Is(Tok::Semicolon) && !Is(Tok::RightParen) && !Is(Tok::End) &&
               !Is(Reserved::Else) && !Is(Reserved::Catch)) {
      node->value = Under(*node, ValueExpression());
    }
  }
  jumps_.push_back(token.pos);
  return node;
}

NodePtr Parser::Function() {
  const Nesting nesting(*this);
  auto node = std::make_unique<FunctionNode>(Take().pos);
  if (!IsVariableName(Peek())) Unexpected(L"the name of the function");
  const Token& name = Take();
  // Inside parentheses a function is a local of them, at the top a global. It may call itself.
  Variable* local = scope_->Find(name.text);
  if (!local && (nesting_ > 2 || scope_->outer())) local = &scope_->Declare(name.text);
  auto code = std::make_shared<FunctionCode>();
  code->name = source_->text.substr(name.start, name.end - name.start);
  code->source = source_;
  FunctionScope inner(scope_);
  inner.OpenBlock();
  FunctionScope* outer = std::exchange(scope_, &inner);
  std::vector<Variable*> variables;
  Parameters(inner, *code, variables);
  Expect(Tok::Assign, L"`=` and the body of the function");
  SkipNewlines();
  const size_t mark = jumps_.size();
  code->body = Expression();
  jumps_.resize(mark);  // they end here
  scope_ = outer;
  for (size_t i = 0; i < variables.size(); ++i) code->parameters[i].boxed = variables[i]->boxed;
  code->captures = inner.captures();
  code->slotCount = inner.slotCount();
  Raise(*node, *code->body);
  node->code = std::move(code);
  if (local)
    node->target = FunctionScope::Use(*local, name.pos);
  else
    node->target = GlobalVariable(name.text, name.pos);
  return node;
}

void Parser::Parameters(FunctionScope& scope, FunctionCode& code, std::vector<Variable*>& variables) {
  constexpr size_t kMostParameters = 250;
  while (IsVariableName(Peek()) || Is(Tok::Keyword) || Is(Tok::Ampersand)) {
    Parameter parameter;
    parameter.byReference = Accept(Tok::Ampersand);
    if (parameter.byReference && !IsVariableName(Peek())) Unexpected(L"a parameter name after `&`");
    const Token& token = Take();
    if (token.kind == Tok::Keyword && token.word != Reserved::None)
      throw ScriptError(L"`" + token.text + L"` is a reserved word", token.pos);
    for (const Parameter& known : code.parameters)
      if (known.name == token.text) throw ScriptError(L"the parameter `" + token.text + L"` stands twice", token.pos);
    if (code.parameters.size() >= kMostParameters)
      throw ScriptError(L"a function takes at most 250 parameters", token.pos);
    parameter.name = token.text;
    parameter.keyword = token.kind == Tok::Keyword;
    if (parameter.keyword && ArgumentFollows(true) && !(IsVariableName(Peek()) && Peek().spaceBefore) &&
        !Is(Tok::Keyword))
      parameter.defaultValue = Operand();
    if (!parameter.keyword) ++code.positionalCount;
    Variable& variable = scope.Declare(token.text);
    if (parameter.byReference) FunctionScope::Box(variable);
    parameter.slot = variable.slot;
    variables.push_back(&variable);
    code.parameters.push_back(std::move(parameter));
  }
}

NodePtr Parser::Locals() {
  auto node = std::make_unique<LocalDeclaration>(Take().pos);
  do {
    SkipNewlines();
    if (!IsVariableName(Peek())) Unexpected(L"the name of a variable");
    const Token& name = Take();
    LocalDeclaration::Entry& entry = node->entries.emplace_back();
    if (Accept(Tok::Assign)) {
      SkipNewlines();
      entry.init = Under(*node, Expression());
    }
    Variable& variable = scope_->Declare(name.text);
    entry.slot = variable.slot;
    variable.flags.push_back(&entry.boxed);
  } while (Accept(Tok::Comma));
  return node;
}

NodePtr Parser::Globals() {
  auto block = std::make_unique<BlockNode>(Take().pos);
  do {
    SkipNewlines();
    if (!IsVariableName(Peek())) Unexpected(L"the name of a variable");
    const Token& name = Take();
    if (scope_->Find(name.text)) throw ScriptError(L"`" + name.text + L"` is a local variable here", name.pos);
    NodePtr target = GlobalVariable(name.text, name.pos);
    if (!Accept(Tok::Assign)) continue;
    SkipNewlines();
    NodePtr value = Expression();
    const uint32_t height = value->height;
    NodePtr assignment = std::make_unique<AssignNode>(name.pos, std::move(target), std::move(value));
    assignment->height = height + 1;
    block->statements.push_back(Under(*block, std::move(assignment)));
  } while (Accept(Tok::Comma));
  return block;
}

// The words of contexts are free for other use: `animate` is one only before `on` or `off`, and so on.
bool Parser::ContextFollows() const {
  const auto isSwitch = [](const Token& t) {
    return t.kind == Tok::Word && (t.word == Reserved::On || t.word == Reserved::Off);
  };
  const WStr& word = Peek().text;
  const Token& next = Peek(1);
  if (word == L"with")
    return next.kind == Tok::Word && (next.text == L"undo" || next.text == L"animate" || next.text == L"redraw");
  if (word == L"at") return next.kind == Tok::Word && next.text == L"time";
  if (word == L"undo") return isSwitch(next) || (next.kind == Tok::String && isSwitch(Peek(2)));
  return (word == L"animate" || word == L"redraw") && isSwitch(next);
}

NodePtr Parser::Context() {
  if (Peek().text == L"with") Take();
  const Token& word = Take();
  const ContextKind kind = word.text == L"undo"      ? ContextKind::Undo
                           : word.text == L"at"      ? ContextKind::Time
                           : word.text == L"animate" ? ContextKind::Animate
                                                     : ContextKind::Redraw;
  auto node = std::make_unique<ContextNode>(word.pos, kind);
  if (kind == ContextKind::Time) Take();
  if (kind == ContextKind::Undo && Is(Tok::String)) node->label = Operand();
  node->setting = Under(*node, Operand());
  SkipNewlines();
  node->body = Under(*node, Expression());
  return node;
}

NodePtr Parser::Macro() {
  auto node = std::make_unique<MacroNode>(Take().pos);
  const Token& name = Take();
  MacroDefinition& macro = node->macro;
  macro.name = source_->text.substr(name.start, name.end - name.start);
  macro.sourceName = source_->name;
  const std::pair<const wchar_t*, WStr*> fields[] = {
      {L"category", &macro.category}, {L"internalcategory", &macro.internalCategory},
      {L"tooltip", &macro.toolTip},   {L"buttontext", &macro.buttonText},
      {L"iconname", &macro.iconName},
  };
  for (SkipNewlines(); Is(Tok::Keyword); SkipNewlines()) {
    const Token& key = Take();
    WStr* field = nullptr;
    for (const auto& [text, place] : fields)
      if (key.text == text) field = place;
    if (!field)
      throw ScriptError(L"a macroScript has no `" + key.text +
                            L":`; expected category:, internalCategory:, toolTip:, buttonText: or iconName:",
                        key.pos);
    *field = Expect(Tok::String, L"a string").text;
  }
  macro.body = MacroBody();
  return node;
}

// "( on execute do ... )", or a body without handlers. The body is parsed here, so that its errors show now.
WStr Parser::MacroBody() {
  const Token& open = Peek();
  if (open.kind != Tok::LeftParen) Unexpected(L"`(` and the body of the macroScript");
  const auto bodyFrom = [&](size_t start) { return source_->text.substr(start, tokens_[at_ - 1].end - start); };
  FunctionScope inner(nullptr);
  FunctionScope* outer = std::exchange(scope_, &inner);
  inner.OpenBlock();
  const size_t mark = jumps_.size();
  const size_t before = at_;
  Take();
  SkipSeparators();
  WStr body;
  if (Is(Reserved::On)) {
    for (; Accept(Reserved::On); SkipSeparators()) {
      if (!Is(Tok::Word)) Unexpected(L"the name of a handler such as `execute`");
      const bool execute = Take().text == L"execute";
      Expect(Reserved::Do, L"`do`");
      SkipNewlines();
      const size_t start = Peek().start;
      Expression();
      if (execute) body = bodyFrom(start);
    }
    Expect(Tok::RightParen, L"`on` or `)`");
  } else {
    at_ = before;
    const size_t start = Peek().start;
    Expression();
    body = bodyFrom(start);
  }
  jumps_.resize(mark);
  scope_ = outer;
  return body;
}

}  // namespace corvanta::script
