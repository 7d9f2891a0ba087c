// SPDX-License-Identifier: MIT
// Tokens to nodes.
#pragma once

#include "host/script/scanner.h"
#include "host/script/scope.h"

namespace corvanta::script {

/// Parses `source` for `vm`, whose globals and host its names are bound to. Throws `ScriptError` with the place
/// and what was expected. Globals that the text assigns are undefined, not unknown, from now on.
std::shared_ptr<const FunctionCode> Parse(Interpreter& vm, const SourcePtr& source);

class Parser {
 public:
  Parser(Interpreter& vm, SourcePtr source);
  std::shared_ptr<const FunctionCode> Program();

 private:
  class Nesting;
  // Tokens.
  const Token& Peek(size_t ahead = 0) const { return tokens_[std::min(at_ + ahead, tokens_.size() - 1)]; }
  const Token& Take() { return tokens_[at_ < tokens_.size() - 1 ? at_++ : at_]; }
  bool Is(Tok kind) const { return Peek().kind == kind; }
  bool Is(Reserved word) const { return Peek().word == word && Peek().kind == Tok::Word; }
  bool Accept(Tok kind);
  bool Accept(Reserved word);
  const Token& Expect(Tok kind, const wchar_t* expected);
  void Expect(Reserved word, const wchar_t* expected);
  void SkipNewlines();
  void SkipSeparators();
  bool AcceptAfterNewlines(Reserved word);
  [[noreturn]] void Unexpected(const wchar_t* expected) const;
  bool IsVariableName(const Token& token) const { return token.kind == Tok::Word && token.word == Reserved::None; }

  // Expressions, from the loosest binding to the tightest.
  NodePtr Expression();
  NodePtr ValueExpression();
  NodePtr Assignment();
  NodePtr Binary(int level);
  NodePtr Not();
  NodePtr Power();
  NodePtr Conversion();
  NodePtr Unary();
  NodePtr CallExpression();
  NodePtr Operand();
  NodePtr Accessors(NodePtr node, size_t start, bool& callable);
  WStr TextFrom(size_t start) const;
  NodePtr Primary(bool& callable);
  NodePtr ReservedValue();
  NodePtr Block();
  NodePtr ArrayLiteral();
  NodePtr PointLiteral();
  bool ArgumentFollows(bool minusToo) const;
  void Argument(CallNode& call);
  NodePtr Reference();

  // Statements.
  NodePtr Statement(bool& found);
  NodePtr If();
  NodePtr For();
  NodePtr ForTail(std::unique_ptr<ForNode> node);
  NodePtr While();
  NodePtr DoWhile();
  NodePtr Case();
  NodePtr Try();
  NodePtr Throw();
  NodePtr Jump();
  NodePtr Function();
  void Parameters(FunctionScope& scope, FunctionCode& code, std::vector<Variable*>& variables);
  NodePtr Locals();
  NodePtr Globals();
  bool ContextFollows() const;
  NodePtr Context();
  NodePtr Macro();
  WStr MacroBody();
  NodePtr LoopBody();

  // Names.
  std::unique_ptr<Assignable> GlobalVariable(const WStr& name, Pos pos);
  NodePtr Name(const Token& token);
  void RefuseJumps(size_t mark) const;
  /// `child`, counted into the height of its parent.
  NodePtr Under(Node& parent, NodePtr child) const;
  void Raise(Node& parent, const Node& child) const;

  Interpreter& vm_;
  const SourcePtr source_;
  const std::vector<Token> tokens_;
  size_t at_ = 0;
  FunctionScope* scope_ = nullptr;
  std::vector<Pos> jumps_;
  std::vector<int> assigned_;  // globals that get a value somewhere in the text
  int nesting_ = 0;
};

}  // namespace corvanta::script
