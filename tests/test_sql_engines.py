"""The SQL scripts at work: run in real databases over the example data, and held against the independent scorer.

Which engine stands in for which dialect is in setUpClass. What an engine does not know is taken out of the script
there, and nowhere else."""

import csv
import os
import re
import sqlite3
import struct
import subprocess
import unittest
from itertools import product

from servers import MariaDb, Postgres, Refused
from sql_program import SqlProgramTest
from support import DOCUMENTS, EXAMPLES, TESTS, categorical, document, numeric
import score as scorer

NESTED = {"useTmpTable": "0"}
EMPTIED = {"createTmpTable": "0"}
DEBUG = {"debugRecoding": "1"}
GRAMMARS = TESTS.parent / "build-grammars"


def example(name):
    """The text of a model document, what it says, and the rows to score, in which None is a missing cell."""
    path = EXAMPLES / name / f"{name}.ModelXml"
    with open(next(path.parent.glob("*.csv")), newline="") as file:
        rows = [{f: None if cell == "NA" else cell for f, cell in row.items()} for row in csv.DictReader(file)]
    return path.read_bytes().decode("utf-16"), scorer.load(path), rows


def quoted(name, dialect):
    if not set(name) & set(' "-'):
        return name
    return {"sqlserver": f"[{name}]", "oracle": f'"{name.upper()}"'}.get(dialect, f'"{name}"')


def load(query, dialect, table, rows, texts):
    """Makes a table of numbers and, in the columns of `texts`, texts."""
    def literal(name, cell):
        if name in texts:
            return "NULL" if cell is None else "'" + cell.replace("'", "''") + "'"
        return cell or "NULL"

    columns = ", ".join(f"{quoted(name, dialect)} {'VARCHAR(40)' if name in texts else 'FLOAT(53)'}" for name in rows[0])
    values = ",".join("(" + ",".join(literal(*cell) for cell in row.items()) + ")" for row in rows)
    query(f"drop table if exists {table};\ncreate table {table}({columns});\n"
          f"insert into {table} values {values};\nselect 1;")


def sqlite(connection):
    def query(sql):
        try:
            *script, last = re.split(r";\n", sql.replace("\\'", "''").strip().rstrip(";"))  # has no backslash escape
            connection.executescript(";\n".join(script) + ";")
            return connection.execute(last).fetchall()
        except sqlite3.Error as error:
            raise Refused(str(error)) from None
    return query


class EnginesTest(SqlProgramTest):
    @classmethod
    def setUpClass(cls):
        mariadb, postgres = MariaDb(), Postgres()
        cls.addClassCleanup(mariadb.stop)
        cls.addClassCleanup(postgres.stop)
        cls.mysql, cls.postgres = mariadb.query, postgres.query

        def understood(sql):
            return postgres.query(re.sub(r"COLLECT STATISTICS ON .*\n| distribute by hash\(id\)", "", sql))

        cls.engines = [
            ("mysql", mariadb.query),
            ("sqlserver", lambda sql: mariadb.query(sql, "MSSQL")),
            ("oracle", lambda sql: mariadb.query(sql, "ORACLE,EMPTY_STRING_IS_NULL")),
            *((dialect, understood) for dialect in ["default", "oracle", "teradata", "teradata_aster", "unknown"]),
            ("default", sqlite(sqlite3.connect(":memory:"))),
        ]
        cls.credit, cls.model, rows = example("credit")
        cls.applicants = [{"id": str(i), **{f: row[f] for f in cls.model.fields}} for i, row in enumerate(rows)]
        cls.scores = {row["id"]: cls.model.score(row) for row in cls.applicants}

    def load_applicants(self, query, dialect):
        texts = {"id"} | {v.field for v in self.model.variables if v.categorical}
        load(query, dialect, "as_texts", self.applicants, texts)
        flags = {"no": "0", "yes": "1", None: None}
        rows = [{**row, "Records": flags[row["Records"]], "Income 2": row["Income"]} for row in self.applicants]
        load(query, dialect, "as_numbers", rows, texts - {"Records"})

    def predictions(self, query, model, before="", key="id", **settings):
        script = self.sql(model, createPredictionTable="1", **settings)
        rows = query("drop table if exists Preds;\ndrop table if exists Qorv_TMP_Preds;\n" + before + script
                     + f"select {key}, Predictions from Preds;")
        self.assertEqual(len(rows), len(dict(rows)))
        return {name: float(value) for name, value in rows}

    def assert_equal_numbers(self, found, expected):
        self.assertEqual(found.keys(), expected.keys())
        far = {k: (found[k], v) for k, v in expected.items() if not abs(found[k] - v) <= 1e-12 * abs(v)}
        self.assertEqual(far, {})

    def test_all_applicants_in_every_dialect_and_plan(self):
        probabilities = {name: self.model.probability(score) for name, score in self.scores.items()}
        self.assertEqual(len(probabilities), 4454)
        stale = "create table Qorv_TMP_Preds(id VARCHAR(20), score FLOAT(53));\ninsert into Qorv_TMP_Preds values('-', 0);\n"
        for dialect, query in self.engines:
            self.load_applicants(query, dialect)
            for plan, table in [({}, "as_numbers"), (EMPTIED, "as_numbers"), (NESTED, "as_numbers"), (NESTED, "as_texts")]:
                with self.subTest(dialect=dialect, engine=query, plan=plan, table=table):
                    found = self.predictions(query, self.credit, stale if plan == EMPTIED else "", dbType=dialect,
                                             inputTable=table, boolsAreNumbers=str(int(table == "as_numbers")), **plan)
                    # "default" has no probability at all: the score is the prediction.
                    self.assert_equal_numbers(found, self.scores if dialect == "default" else probabilities)
                    if plan == EMPTIED and dialect != "default":
                        self.assertEqual(query("select * from Qorv_TMP_Preds;"), [])
                    elif plan != EMPTIED:
                        with self.assertRaises(Refused):
                            query("select * from Qorv_TMP_Preds;")

    def test_debug_columns_add_up_to_the_score(self):
        """Two models of one field would make two columns of one name, so one of them gets a field of its own."""
        model = 'field="Income 2"'.join(self.credit.rsplit('field="Income"', 1))
        for dialect, query in self.engines:
            if dialect == "default":
                continue
            with self.subTest(dialect=dialect, engine=query):
                self.load_applicants(query, dialect)
                found = self.predictions(query, model, dbType=dialect, inputTable="as_numbers", debugRecoding="1")
                # Every stored score is 0, and every prediction is made of that.
                self.assert_equal_numbers(found, dict.fromkeys(self.scores, self.model.probability(0)))
                columns = "+".join(quoted(f"R_{f}", dialect) for f in [*self.model.fields, "Income 2"])
                sums = query(f"select id, {columns} from Qorv_TMP_Preds where score=0;")
                self.assert_equal_numbers({name: self.model.constant + float(s) for name, s in sums}, self.scores)

    def test_all_claims_in_every_dialect(self):
        """A field annual.km stays unquoted, which makes it the column km of a table annual. Nothing helps a field
        that is a word of the language, so that one gets another name."""
        text, model, rows = example("claims")
        numbers = [v.field for v in model.variables if not v.categorical]
        names = {"annual.km": "km", "use": "purpose"}
        text = text.replace('field="use"', 'field="purpose"')

        def single(cell):
            return cell and repr(struct.unpack("f", struct.pack("f", float(cell)))[0])

        for dialect, query in self.engines:
            with self.subTest(dialect=dialect, engine=query):
                seen = rows
                if dialect == "sqlserver":  # MariaDB casts to single precision, which moves cells off cuts and codes
                    seen = [{n: single(c) if n in numbers else c for n, c in row.items()} for row in rows]
                if dialect.startswith("teradata"):  # these compare untrimmed
                    seen = [row if row["region"].strip() == row["region"] else {**row, "region": "?"} for row in rows]
                load(query, dialect, "annual", [{names.get(n, n): c for n, c in row.items()} for row in rows],
                     {"policy", "region", "purpose"})
                found = self.predictions(query, text, key="policy", dbType=dialect, inputTable="annual", keyName="policy")
                self.assert_equal_numbers(found, {row["policy"]: model.score(row) for row in seen})

    def test_what_servers_refuse(self):
        """What these servers do not take; scripts in use look like this."""
        models = [categorical(1, "b", ["it's"], [1, 2]), numeric(2, "n", [0], [0, 0, 0])]
        table = [(3, 0.75), (0, 0.5), (-1, 0)]
        good = document(models, [(1, 1), (2, 1)], 0, table)
        twice = document([models[1].replace("V2", "V1"), models[1]], [(1, 1), (2, 1)], 0, table)
        cases = [
            (self.postgres, good, {**DEBUG, "dbType": "default"}, "INSERT has more expressions than target columns"),
            (self.postgres, good, {**DEBUG, **EMPTIED, "dbType": "oracle"}, 'syntax error at or near "R_b"'),
            (self.postgres, twice, {**DEBUG, "dbType": "oracle"}, 'column "r_n" specified more than once'),
            (self.mysql, good, {"predictionTable": "a b", "dbType": "mysql"}, "error in your SQL syntax"),  # with an index
            (self.engines[1][1], good, {"predictionTable": "c d", "dbType": "sqlserver"}, "error in your SQL syntax"),
            (self.mysql, good.replace('"n"', '"use"'), {"dbType": "mysql"}, "error in your SQL syntax"),
            (self.mysql, good.replace('"n"', "'n\"'"), {"dbType": "mysql"}, "Unknown command '\\\"'"),
            (lambda sql: self.postgres(sql, "off"), good, {"dbType": "default"}, 'syntax error at or near "s"'),
        ]
        source = "drop table if exists src;\ncreate table src(id VARCHAR(20), b VARCHAR(9), n FLOAT(53));\n"
        for query, model, settings, refusal in cases:
            with self.subTest(settings=settings), self.assertRaisesRegex(Refused, re.escape(refusal)):
                self.predictions(query, model, source, **settings)
        # The client drops "--drop" as a comment, the server itself wants a blank after the dashes.
        line = self.sql(good, dbType="mysql").partition("\n")[0]
        self.assertEqual(line, "--drop table Qorv_TMP_Preds;")
        with self.assertRaisesRegex(Refused, "error in your SQL syntax"):
            self.mysql(f"prepare s from '{line}';")

    def test_scripts_follow_the_grammars(self):
        if not (GRAMMARS / "node_modules" / "antlr4ts-sql" / "package.json").exists():
            GRAMMARS.mkdir(exist_ok=True)  # the next version of antlr4ts cannot be loaded by the grammars
            subprocess.run(["npm", "install", "--no-audit", "--no-fund", "--silent", "antlr4ts-sql@1.1.0",
                            "antlr4ts@0.5.0-alpha.4"], cwd=GRAMMARS, check=True, timeout=300)
        kinds = DOCUMENTS["kinds"].replace('field="size"', 'field="extent"')  # a word of the language
        for dialect, language, column in [("sqlserver", "tsql", 11), ("oracle", "plsql", 7)]:
            files = []
            for model, plan, debug in product([self.credit, kinds], [{}, NESTED], "01"):
                self.sql(model, "A comment", dbType=dialect, createPredictionTable="1", debugRecoding=debug,
                         boolsAreNumbers=debug, **plan)
                files.append((self.folder / "out").rename(self.folder / f"{len(files)}.sql"))
            self.write("wrong", "\ufeffinsert int a(b) select c from d;", "utf-16-le")
            run = subprocess.run(["node", TESTS / "sql_grammars.cjs", language, *files, "wrong"], cwd=self.folder,
                                 env={**os.environ, "NODE_PATH": str(GRAMMARS / "node_modules")},
                                 capture_output=True, text=True, timeout=300)
            self.assertEqual((run.stderr, run.stdout), ("", "parsed\n" * 8 + f"wrong: line 1, column {column}\n"))


if __name__ == "__main__":
    unittest.main()
