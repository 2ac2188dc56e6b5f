"""The SQL scripts at work: run in real databases over the example data, and held against the independent scorer.

Which engine stands in for which dialect is in setUpClass. What an engine does not know is taken out of the script
there, and nowhere else."""

import csv
import re
import sqlite3
import struct
import subprocess
import unittest
from itertools import product

import scorer
from servers import MariaDb, Postgres, Refused
from sql_program import SqlProgramTest
from support import DOCUMENTS, EXAMPLES, TESTS, categorical, document, numeric

NESTED = {"useTmpTable": "0"}
PLANS = [{}, {"createTmpTable": "0"}, NESTED]
GRAMMARS = TESTS.parent / "build-grammars"


def read_rows(path):
    """The cells of each row; None for a missing one."""
    with open(path, newline="") as file:
        return [{name: None if cell == "NA" else cell for name, cell in row.items()} for row in csv.DictReader(file)]


def quoted(name, dialect):
    if not set(name) & set(' "-'):
        return name
    return {"sqlserver": f"[{name}]", "oracle": f'"{name.upper()}"'}.get(dialect, f'"{name}"')


def load(table, rows, texts, dialect):
    """The statements that make a table of numbers and, in the columns of `texts`, texts."""
    def literal(name, cell):
        if name in texts:
            return "NULL" if cell is None else "'" + cell.replace("'", "''") + "'"
        return cell or "NULL"

    columns = ", ".join(f"{quoted(name, dialect)} {'VARCHAR(40)' if name in texts else 'FLOAT(53)'}" for name in rows[0])
    values = ["(" + ",".join(literal(name, cell) for name, cell in row.items()) + ")" for row in rows]
    inserts = [f"insert into {table} values {','.join(values[i:i + 500])};" for i in range(0, len(values), 500)]
    return "\n".join([f"drop table if exists {table};", f"create table {table}({columns});", *inserts, ""])


class Sqlite:
    def __init__(self):
        self.connection = sqlite3.connect(":memory:")

    def query(self, sql):
        """Runs a script, whose texts have no backslash escape here, and returns the rows of its last statement."""
        try:
            head, _, last = sql.replace("\\'", "''").rstrip().rstrip(";").rpartition(";\n")
            self.connection.executescript(head + ";")
            return self.connection.execute(last).fetchall()
        except sqlite3.Error as error:
            raise Refused(str(error)) from None


class EnginesTest(SqlProgramTest):
    @classmethod
    def setUpClass(cls):
        mariadb, postgres = MariaDb(), Postgres()
        cls.addClassCleanup(mariadb.stop)
        cls.addClassCleanup(postgres.stop)
        cls.postgres = postgres

        def understood(sql):
            return re.sub(r"COLLECT STATISTICS ON .*\n| distribute by hash\(id\)", "", sql)

        cls.engines = [
            ("mysql", mariadb.query),
            ("sqlserver", lambda sql: mariadb.query(sql, "MSSQL")),
            ("oracle", lambda sql: mariadb.query(sql, "ORACLE,EMPTY_STRING_IS_NULL")),
            *((dialect, lambda sql: postgres.query(understood(sql)))
              for dialect in ["default", "oracle", "teradata", "teradata_aster", "unknown"]),
            ("default", Sqlite().query),
        ]
        cls.by_name = dict(cls.engines[:3]) | {"postgres": cls.engines[-2][1]}

        cls.credit = (EXAMPLES / "credit" / "credit.ModelXml").read_bytes().decode("utf-16")
        cls.credit_model = scorer.load(EXAMPLES / "credit" / "credit.ModelXml")
        rows = read_rows(EXAMPLES / "credit" / "applicants.csv")
        cls.applicants = [{"id": str(i), **{f: row[f] for f in cls.credit_model.fields}} for i, row in enumerate(rows)]
        cls.credit_texts = {"id"} | {v.field for v in cls.credit_model.variables if v.categorical}
        cls.scores = {row["id"]: cls.credit_model.score(row) for row in cls.applicants}

    def load_applicants(self, query, dialect):
        query(load("as_texts", self.applicants, self.credit_texts, dialect) + "select 1;")
        flags = {"no": "0", "yes": "1", None: None}
        rows = [{**row, "Records": flags[row["Records"]], "Income 2": row["Income"]} for row in self.applicants]
        query(load("as_numbers", rows, self.credit_texts - {"Records"}, dialect) + "select 1;")

    def predictions(self, query, script, key="id"):
        rows = query("drop table if exists Preds;\n" + script + f"select {key}, Predictions from Preds;")
        self.assertEqual(len(rows), len(dict(rows)))
        return {name: float(value) for name, value in rows}

    def assert_equal_numbers(self, found, expected):
        self.assertEqual(found.keys(), expected.keys())
        far = {k: (found[k], v) for k, v in expected.items() if not abs(found[k] - v) <= 1e-12 * max(1, abs(v))}
        self.assertEqual(far, {})

    def test_all_applicants_in_every_dialect_and_plan(self):
        model = self.credit_model
        segments = {name: model.segment(score) for name, score in self.scores.items()}
        self.assertEqual(set(segments.values()), {"above", "inner", "last", "below"})
        # The scripts have no branch for scores between the last two points of the table, so these get 0.
        probabilities = {name: 0 if segments[name] == "last" else model.probability(score)
                         for name, score in self.scores.items()}
        self.assertEqual(len(probabilities), 4454)
        for dialect, query in self.engines:
            self.load_applicants(query, dialect)
            # "default" has no probability at all: the score is the prediction.
            expected = self.scores if dialect == "default" else probabilities
            for plan, bools in [*product(PLANS, ["as_numbers"]), (NESTED, "as_texts")]:
                with self.subTest(dialect=dialect, engine=query, plan=plan, bools=bools):
                    script = self.sql(self.credit, dbType=dialect, inputTable=bools, createPredictionTable="1",
                                      boolsAreNumbers="1" if bools == "as_numbers" else "0", **plan)
                    query("drop table if exists Qorv_TMP_Preds;\nselect 1;")
                    if "createTmpTable" in plan:
                        query("create table Qorv_TMP_Preds(id VARCHAR(20), score FLOAT(53));\n"
                              "insert into Qorv_TMP_Preds values('old', 0);\nselect 1;")
                    self.assert_equal_numbers(self.predictions(query, script), expected)
                    if "createTmpTable" in plan:
                        emptied = [("1",)] if dialect == "default" else [("0",)]  # which has no use for the table
                        count = query("select count(*) from Qorv_TMP_Preds;")
                        self.assertEqual([(str(c),) for (c,) in count], emptied)
                    elif dialect != "default":
                        with self.assertRaises(Refused):
                            query("select * from Qorv_TMP_Preds;")

    def test_debug_columns_add_up_to_the_score(self):
        """Two models of one field would make two columns of one name, so one of them gets a field of its own."""
        head, tail = self.credit.rsplit('field="Income"', 1)
        model = head + 'field="Income 2"' + tail
        for dialect, query in self.engines:
            if dialect == "default":
                continue
            with self.subTest(dialect=dialect, engine=query):
                self.load_applicants(query, dialect)
                query("drop table if exists Qorv_TMP_Preds;\nselect 1;")
                script = self.sql(model, dbType=dialect, inputTable="as_numbers", createPredictionTable="1", debugRecoding="1")
                # Every stored score is 0, and so is every prediction made of it.
                predictions = self.predictions(query, script)
                self.assertEqual(len(predictions), 4454)
                self.assert_equal_numbers(predictions, dict.fromkeys(predictions, self.credit_model.probability(0)))
                columns = [quoted(f"R_{f}", dialect) for f in [*self.credit_model.fields, "Income 2"]]
                sums = query(f"select id, score, {'+'.join(columns)} from Qorv_TMP_Preds;")
                self.assertEqual({float(zero) for _, zero, _ in sums}, {0})
                self.assert_equal_numbers({name: self.credit_model.constant + float(s) for name, _, s in sums}, self.scores)

    def test_all_claims_in_every_dialect(self):
        """A field annual.km stays unquoted, which makes it the column km of a table annual. So does one that is a word
        of the language, which no table helps against."""
        path = EXAMPLES / "claims" / "claims.ModelXml"
        # Missing codes are looked up by the field as it is, while the workbench lists them by the cleaned name.
        text = path.read_bytes().decode("utf-16").replace('"vehicle_age"', '"vehicle age"').replace('"annual_km"', '"annual.km"')
        text = text.replace('field="use"', 'field="purpose"')
        model = scorer.load(path)
        rows = read_rows(EXAMPLES / "claims" / "claims.csv")
        columns = {"annual.km": "km", "use": "purpose"}
        numbers = [v.field for v in model.variables if not v.categorical]

        def single(cell):
            return cell and repr(struct.unpack("f", struct.pack("f", float(cell)))[0])

        for dialect, query in self.engines:
            with self.subTest(dialect=dialect, engine=query):
                seen = rows
                if dialect == "sqlserver":  # MariaDB casts to single precision, which moves cells off cuts and codes
                    seen = [{n: single(c) if n in numbers else c for n, c in row.items()} for row in rows]
                if dialect.startswith("teradata"):  # these compare untrimmed
                    seen = [row if row["region"].strip() == row["region"] else {**row, "region": "?"} for row in rows]
                table = [{columns.get(name, name): cell for name, cell in row.items()} for row in rows]
                query(load("annual", table, {"policy", "region", "purpose"}, dialect) + "select 1;")
                script = self.sql(text, dbType=dialect, inputTable="annual", keyName="policy", createPredictionTable="1")
                self.assert_equal_numbers(self.predictions(query, script, "policy"),
                                          {row["policy"]: model.score(row) for row in seen})

    def test_what_servers_refuse(self):
        """Required texts that do not run; they are kept."""
        models = [categorical(1, "b", ["it's", " x"], [1, 2, 4]), numeric(2, "n", [0], [0, 0, 0])]
        table = [(3, 0.75), (0, 0.5), (-1, 0)]
        good = document(models, [(1, 1), (2, 1)], 0, table)
        twice = document([models[1].replace("V2", "V1"), models[1]], [(1, 1), (2, 1)], 0, table)
        mark = document([categorical(1, 'b"', ["x"], [0, 1])], [(1, 1)], 0, table)
        debug = {"debugRecoding": "1", "createPredictionTable": "1"}
        index = {"predictionTable": "my preds", "createPredictionTable": "1"}
        cases = [
            ("postgres", good, {**debug, "dbType": "default"}, "INSERT has more expressions than target columns"),
            ("postgres", good, {**debug, "dbType": "oracle", **NESTED}, None),  # only the outer select counts
            ("postgres", good, {**debug, "dbType": "oracle", "createTmpTable": "0"}, 'syntax error at or near "R_b"'),
            ("postgres", twice, {**debug, "dbType": "oracle"}, 'column "r_n" specified more than once'),
            ("mysql", mark, {"dbType": "mysql"}, "Unknown command '\\\"'"),
            ("mysql", good.replace('"n"', '"use"'), {"dbType": "mysql"}, "error in your SQL syntax"),
            ("postgres", good, {**index, "dbType": "mysql"}, 'syntax error at or near "_index"'),
            ("mysql", good, {**index, "dbType": "mysql"}, "error in your SQL syntax"),
            ("sqlserver", good, {**index, "dbType": "sqlserver"}, "error in your SQL syntax"),
        ]
        for engine, model, settings, refusal in cases:
            with self.subTest(settings=settings):
                query = self.by_name[engine]
                start = (f"drop table if exists {quoted('my preds', settings['dbType'])}; drop table if exists Preds; drop table if exists src; drop table if exists Qorv_TMP_Preds;\n"
                         "create table src(id VARCHAR(20), b VARCHAR(9), n FLOAT(53));\n"
                         "insert into src values('1', 'it''s', 1), ('2', ' x', 0), ('3', 'x', 0);\n")
                script = start + self.sql(model, **settings) + "select * from Preds;"
                if refusal is None:
                    self.assertEqual([p for _, p in query(script)], ["0", "0", "0"])  # made of the score 0
                    continue
                with self.assertRaisesRegex(Refused, re.escape(refusal)):
                    query(script)
        with self.assertRaisesRegex(Refused, "syntax error|unterminated"):  # where texts have no backslash escape
            self.postgres.query(start + self.sql(good, dbType="default"), backslashes=False)
        # The client drops "--drop" as a comment, the server itself wants a blank after the dashes.
        line = self.sql(good, dbType="mysql").partition("\n")[0]
        self.assertEqual(line, "--drop table Qorv_TMP_Preds;")
        with self.assertRaisesRegex(Refused, "error in your SQL syntax"):
            self.by_name["mysql"](f"prepare s from '{line}';")

    def test_scripts_follow_the_grammars(self):
        if not (GRAMMARS / "node_modules" / "antlr4ts-sql" / "package.json").exists():
            GRAMMARS.mkdir(exist_ok=True)
            # The next version of antlr4ts cannot be loaded by the grammars.
            subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--silent", "antlr4ts-sql@1.1.0", "antlr4ts@0.5.0-alpha.4"],
                           cwd=GRAMMARS, check=True, timeout=300)
        claims = (EXAMPLES / "claims" / "claims.ModelXml").read_bytes().decode("utf-16")
        claims = claims.replace('field="use"', 'field="purpose"')  # a word of the language
        for dialect, language in [("sqlserver", "tsql"), ("oracle", "plsql")]:
            files = []
            for model, plan, debug, bools in product([self.credit, claims, DOCUMENTS["kinds"]], PLANS[::2], "01", "01"):
                if model == claims and debug == "1":  # a column R_annual.km
                    continue
                files.append(f"{len(files)}.sql")
                self.sql(model, "A comment", dbType=dialect, createPredictionTable="1", debugRecoding=debug,
                         boolsAreNumbers=bools, **plan)
                (self.folder / "out").rename(self.folder / files[-1])
            self.write("wrong.sql", "\ufeff" + self.read(files[0]).replace("   END", "", 1), "utf-16-le")
            run = subprocess.run(["node", TESTS / "sql_grammars.cjs", language, *files, "wrong.sql"], cwd=self.folder,
                                 env={"NODE_PATH": str(GRAMMARS / "node_modules"), "PATH": "/usr/local/bin:/usr/bin:/bin"},
                                 capture_output=True, text=True, timeout=300)
            *parsed, wrong = run.stdout.splitlines()
            self.assertEqual((run.stderr, parsed), ("", ["parsed"] * len(files)))
            self.assertNotEqual(wrong, "parsed")


if __name__ == "__main__":
    unittest.main()
