"""The SQL script and the ETL document: their text, the configuration, messages and exit statuses."""

import unittest
from xml.etree import ElementTree

from sql_program import DIALECTS, SqlProgramTest, configuration
from support import DOCUMENTS, categorical, document, numeric

SMALL = document([numeric(1, "n", [0.5], [0, 1 / 3, 1e-13]), categorical(2, "my col", ["it's", ""], [0, 1, 10])],
                 [(2, 1), (1, 1)], -10, [(1, 0.9), (0, 0.5), (-1, 0.25), (-2, 0.1)])


class SqlTest(SqlProgramTest):
    def test_golden_scripts(self):
        """Together, these cover every dialect, plan and switch."""
        nested = {"useTmpTable": "0"}
        debug = {"debugRecoding": "1"}
        for name, settings in {
            "default": {"createPredictionTable": "1", "boolsAreNumbers": "0"},
            "sqlserver": {"createPredictionTable": "1", "schemaName": "my schema", "inputTable": "a-b"},
            "oracle": {**nested, "schemaName": "dbo", "predictionTable": 'the "best"', "keyName": "key"},
            "mysql": {"createPredictionTable": "1", "createTmpTable": "0", "comment": " Scores\nof applicants\n"},
            "teradata": {**debug, "predictionTable": "a table name longer than thirty units", "prediction": "p c"},
            "teradata_aster": {**nested, **debug, "createPredictionTable": "1", "boolsAreNumbers": "0"},
            "unknown": debug | {"createTmpTable": "0", "schemaName": "s"},
        }.items():
            with self.subTest(name):
                self.assert_golden(f"kinds.{name}.sql", self.sql(DOCUMENTS["kinds"], dbType=name, **settings))
        self.assert_golden("missing.unknown.sql", self.sql(DOCUMENTS["missing"], dbType=""))
        self.assert_golden("none.mysql.sql", self.sql(DOCUMENTS["none"], dbType="MySQL", **nested))

    def test_long_names(self):
        long = "t" * 70
        for dialect in DIALECTS:
            with self.subTest(dialect):
                length = 30 if dialect.startswith("teradata") else 64
                script = self.sql(SMALL, dbType=dialect.title(), predictionTable=long, createPredictionTable="1")
                self.assertIn(f"create table {long[:length]}(", script)
                self.assertEqual(f"Qorv_TMP_{long[:length - 9]};\n" in script, dialect != "default")
                self.assertEqual(f"\nCREATE INDEX {long[:length]}_index ON {long[:length]}(id);\n" in script,
                                 dialect in ["sqlserver", "mysql"])

    def test_etl_document(self):
        connection = {"odbcLink": """Driver='x';A<B>&"C" """, "odbcLogin": "me & you", "odbcPassword": "p'w"}
        for dialect in DIALECTS:
            given = {"dbType": dialect, **connection}
            plain = self.sql(SMALL, "a&lt;b &amp; c", **given)
            etl = self.sql(SMALL, "a&lt;b &amp; c", kestruneScript="1", **given)
            root = ElementTree.parse(self.folder / "out").getroot()
            reader = root.find("ACTIONS/readODBC")
            mode = None if dialect in ["sqlserver", "unknown"] else "4"
            self.assertEqual((reader.text, reader.get("mode")), (f"\n{plain}\n", mode))
            self.assertEqual(list(root.find("GlobalParameters/ODBCConnections/odbc").attrib.values())[1:],
                             list(connection.values()))
            if dialect == "mysql":
                script = plain.replace("&", "&amp;").replace("<", "&lt;")
                self.assert_golden("etl.mysql.xml", etl.replace(script, "(script)"))

    def test_settings(self):
        keyed = SMALL.replace("</Target>", "</Target><Key>the key</Key>")
        for settings, fragment in [
            ({"keyName": ""}, 'insert into Preds("the key",Predictions)\n'),
            ({"keyName": " ", "prediction": "", "schemaName": " "}, 'insert into " ".Preds(" ",)\n'),
            ({"keyName": "Key", "prediction": "key"}, '(Key,"key")'),
            ({"keyName": "a-b", "prediction": 'straße "x"', "dbType": "oracle"}, '("A-B","STRASSE \\"X\\"")'),
            ({"predictionTable": "t" * 64 + " x"}, 't("the key"'),
            ({"predictionTable": "P]", "schemaName": "a b", "dbType": "sqlserver"}, "DROP TABLE [a b].Qorv_TMP_P];\n"),
            ({"predictionTable": 'P "q"', "dbType": "sqlserver"}, 'DROP TABLE [Qorv_TMP_P "q"];\n'),
            ({"dbType": "", "createTmpTable": "", "useTmpTable": ""}, "DROP TABLE"),
            ({"dbType": "x", "useTmpTable": "yes"}, ") Qorv_TMP;"),
        ]:
            with self.subTest(settings):
                self.assertIn(fragment, self.sql(keyed, **settings))
        flags = {"1": True, " +7x": True, "257": True, "": False, "0": False, "true": False, "256": False}
        self.assertEqual({flag: "create table" in self.sql(SMALL, createPredictionTable=flag) for flag in flags}, flags)
        self.assertTrue(self.sql(SMALL, "\n a\nb \u00a0<x>c</x> d").startswith("-- a\n-- b\ninsert into Preds(id,"))
        bare = configuration().replace("<Model2SQL ", "<model2sql prediction dbType CREATEtmptable ")
        self.assertEqual(self.run_configuration(bare.replace("/Model2SQL", "/MODEL2sql"))[0], 0)
        self.assertIn("(id,Predictions)\n SELECT", self.read("out"))

    def test_rejected_configurations(self):
        self.write("model.ModelXml", SMALL)
        no = "Error: cannot convert model: no {} is given! ('{}' field is empty or mising)"
        cases = [
            ({"inputFile": "", "outputFile": None}, 1,
             "Error: cannot convert model: no XML model to convert! ('inputFile' field is empty or mising)"),
            ({"outputFile": None, "inputTable": ""}, 2,
             "Error: cannot convert model: the output filename is missing! ('outputFile' field is empty or mising)"),
            ({"inputTable": "", "predictionTable": "", "inputFile": "none"}, 3, no.format("input table/view", "inputTable")),
            ({"predictionTable": None}, 5, no.format("prediction Table Name", "predictionTable")),
            ({"outputFile": "no/folder", "inputFile": "none"}, 8, "Cannot convert model 'none': Error: File not found.\n"),
            ({"outputFile": "no/folder"}, 6, "Cannot open file 'no/folder' for writing.\n"),
            ({"outputFile": "/dev/full"}, 7, "Cannot write to file '/dev/full'.\n"),
        ]
        for settings, status, message in cases:
            with self.subTest(message):
                self.assertEqual(self.run_configuration(configuration(**settings)), (status, message))
        parse_error = "XML Parsing error inside file '{}'.\n{}\nAt line {}, column {}.\n"
        for text, problem in [(configuration().replace("Model2SQL", "Models"), ("Error: First Tag not found", 0, 0)),
                              ("<Model2SQL>\n&x;", ("Error: Unknown character entity", 2, 4)),
                              ("<Model2SQL inputFile='a'>", ("Warning: Unmatched end tag", 1, 26))]:
            with self.subTest(text):
                self.assertEqual(self.run_configuration(text), (10, parse_error.format("c.xml", *problem)))
        self.assertEqual(self.run_program("-s", "%s"), (10, parse_error.format("%s", "Error: File not found", 0, 0)))

    def test_rejected_models(self):
        boolean = categorical(1, "b", [], [0, 1], tname="bb64")
        one, two = numeric(1, "a", [0], [1, 2, 3]), numeric(2, "b", [0], [1, 2, 3])
        few = document([one], [], 0).replace("<betas>", "<betas>AAAA</betas><x>").replace("</betas></Reg", "</x></Reg")
        without = "model 'V2' (field 'b'): its number is not in the array 'indexes' of RegressionModel"
        for model, settings, problem in [
            (document([one, two], [(1, 1)], 0), {}, without),
            (document([boolean], [(1, 1)], 0), {}, "model 'V1' (field 'b'): array 'y' has 2 values, 3 needed"),
            (document([], [], 0, table=[]), {"dbType": "oracle"}, "ProbabilityMapping: array 'x' has 0 values, 1 needed"),
            (few, {}, "RegressionModel: array 'betas' has 0 values, 1 needed"),
        ]:
            with self.subTest(problem):
                self.write("model.ModelXml", model)
                self.assertEqual(self.run_configuration(configuration(**settings)),
                                 (8, f"Cannot convert model 'model.ModelXml': {problem}.\n"))
                self.assertFalse((self.folder / "out").exists())
        # What a plan does not read may be absent.
        self.sql(document([boolean], [(1, 1)], 0), boolsAreNumbers="0")
        self.sql(document([], [], 0, table=[]))
        self.sql(few.replace("<UnivModels>" + one, "<UnivModels>"), debugRecoding="1")

    def test_coefficients(self):
        """Variables of one number share its last coefficient; a boolean column always has two lines."""
        models = [numeric(1, "a", [0], [1, 2, 3]), categorical(1, "b", ["x"], [1, 2, 3], tname="bb64")]
        script = self.sql(document(models, [(1, 5), (1, 7)], 0))
        self.assertIn("WHEN a<0 THEN 14\n   WHEN a>0 THEN 21\n   ELSE 7\n", script)
        self.assertIn("( b IS NULL) THEN 7\n   WHEN b=0 THEN 14\n   WHEN b=1 THEN 21\n   ELSE 7\n   END)", script)
        # A coefficient without a variable has no effect; the constant follows all coefficients.
        self.assertEqual(self.sql(document(models, [(8, 3), (1, 7), (9, 4)], 0.5)), self.sql(document(models, [(1, 7)], 0.5)))

    def test_missing_codes_are_looked_up_by_the_raw_field(self):
        models = [numeric(1, "a b", [0], [1, 2, 3]), numeric(2, "c", [0], [1, 2, 3])]
        script = self.sql(document(models, [(1, 1), (2, 1)], 0,
                                   missing={"a_b": [1], "A B": [2, 9.9e-13, -1e-12, 1e6], "c": [9, 99]}))
        self.assertIn('("a b" IS NULL) OR ("a b"=1000000) OR ("a b"=-1e-12) OR ("a b"=0) OR ("a b"=2) THEN 1\n', script)
        self.assertIn("(c IS NULL) OR (c=99) OR (c=9) THEN 1\n", script)


if __name__ == "__main__":
    unittest.main()
