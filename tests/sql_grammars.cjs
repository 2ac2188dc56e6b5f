// sql_grammars.cjs tsql|plsql FILE... : checks scripts in UTF-16LE against the grammars of two dialects that no
// free server speaks. Neither has a backslash escape, so \' becomes '' first. Syntax only; nothing is run.
const fs = require('fs'), path = require('path'), antlr = require('antlr4ts-sql');
const grammars = path.join(path.dirname(require.resolve('antlr4ts-sql')), 'src/grammar-output');
const [, , language, ...files] = process.argv;
const { Lexer, Parser, root } = {
  tsql: { Lexer: require(grammars + '/tsql/TSqlLexer').TSqlLexer, Parser: antlr.TSQLGrammar.TSqlParser, root: 'tsql_file' },
  plsql: { Lexer: require(grammars + '/plsql/PlSqlLexer').PlSqlLexer, Parser: antlr.PlSQLGrammar.PlSqlParser, root: 'sql_script' },
}[language];

for (const file of files) {
  const script = fs.readFileSync(file).toString('utf16le', 2).replaceAll("\\'", "''");
  const errors = [];
  const listener = { syntaxError: (_, symbol, line, column) => errors.push(`line ${line}, column ${column}`) };
  const characters = antlr.CharStreams.fromString(script);
  const lookAhead = characters.LA.bind(characters); // the grammars know upper-case words only
  characters.LA = i => { const c = lookAhead(i); return c > 0 ? String.fromCodePoint(c).toUpperCase().codePointAt(0) : c; };
  const lexer = new Lexer(characters), parser = new Parser(new antlr.CommonTokenStream(lexer));
  for (const part of [lexer, parser]) { part.removeErrorListeners(); part.addErrorListener(listener); }
  parser[root]();
  console.log(errors.length ? `${file}: ${errors[0]}` : 'parsed');
}
