"""The SQL script and the ETL document: their texts, the configuration, messages and exit statuses."""

import unittest
from xml.etree import ElementTree

from sql_program import DIALECTS, SqlProgramTest, configuration
from support import DOCUMENTS, categorical, document, numeric

TABLE = [(1, 0.9), (0, 0.5), (-1, 0.25), (-2, 0.1)]
SMALL = document([numeric(1, "n", [0.5], [0, 1 / 3, 1e-13]), categorical(2, "my col", ["it's", ""], [0, 1, 10])],
                 [(2, 1), (1, 1)], -10, TABLE)


class SqlTest(SqlProgramTest):
    def test_golden_scripts(self):
        """Every dialect once, every plan and switch among them."""
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

    def test_dialects_side_by_side(self):
        long = "t" * 70
        differences = {  # what is written : by whom
            "(CAST((CASE ": "unknown",
            "0\n   END ) AS FLOAT))\n": "unknown",
            "0\n   END) AS FLOAT))\n": "unknown",
            "WHEN n<0.5 ": "default oracle mysql teradata teradata_aster",
            "WHEN CAST(n AS FLOAT)<0.5 ": "sqlserver unknown",
            """ OR RTRIM(LTRIM("my col"))='') """: "default mysql unknown",
            """ OR RTRIM(LTRIM([my col]))='') """: "sqlserver",
            """ OR RTRIM(LTRIM("MY COL"))='') """: "oracle",
            """ OR "my col"='') """: "teradata teradata_aster",
            f"create table {long[:64]}(": "default sqlserver oracle mysql unknown",
            f"create table {long[:30]}(": "teradata teradata_aster",
            f"\ncreate table Qorv_TMP_{long[:55]}(": "sqlserver oracle mysql unknown",
            f"\ncreate table Qorv_TMP_{long[:21]}(": "teradata teradata_aster",
            " THEN 0.3333333333333333\n": "default sqlserver oracle mysql teradata_aster unknown",
            " THEN 0.333333333333333\n": "teradata",
            ") AS Predictions FROM src;": "default",
            "   ) AS score FROM src;": "sqlserver oracle mysql teradata teradata_aster unknown",
            "Predictions FLOAT(53)) distribute by hash(id);\n": "teradata_aster",
            "score FLOAT(53)) distribute by hash(id);\n": "teradata_aster",
            f"\nCREATE INDEX {long[:64]}_index ON {long[:64]}(id);\n": "sqlserver mysql",
            f"\n\nCOLLECT STATISTICS ON Qorv_TMP_{long[:21]} INDEX (id);\n": "teradata",
            " mode='4'": "default oracle mysql teradata teradata_aster",
            "='it\\'s' THEN 1\n": " ".join(DIALECTS),
            "='' THEN 10\n": " ".join(DIALECTS),
        }
        for dialect in DIALECTS:
            settings = {"dbType": dialect.title(), "predictionTable": long, "createPredictionTable": "1"}
            self.sql(SMALL, kestruneScript="1", **settings)
            text = "".join(ElementTree.parse(self.folder / "out").find("ACTIONS/readODBC").itertext())
            reader = self.read("out").partition("<readODBC")[2].partition(">")[0]
            for fragment, users in differences.items():
                with self.subTest(dialect=dialect, fragment=fragment):
                    self.assertEqual(fragment in text + reader, dialect in users.split())

    def test_etl_document(self):
        link = """Driver='x';A<B>&"C" """
        settings = {"dbType": "mysql", "odbcLink": link, "odbcLogin": "me & you", "odbcPassword": "p'w"}
        for given in [settings, {"dbType": "sqlserver"}]:
            plain = self.sql(DOCUMENTS["kinds"], "a&lt;b &amp; c", **given)
            etl = self.sql(DOCUMENTS["kinds"], "a&lt;b &amp; c", kestruneScript="1", **given)
            self.assertTrue(etl.startswith('<?xml version="1.0" encoding="utf-16"?>\n<KESTRUNE>\n'))
            self.assertTrue(etl.endswith("</CONNECTORS>\n</KESTRUNE>"))
            root = ElementTree.parse(self.folder / "out").getroot()
            self.assertEqual(root.find("ACTIONS/readODBC").text, f"\n{plain}\n")
            self.assertEqual(root.find("GlobalParameters/ODBCConnections/odbc").attrib,
                             {"name": "DataBaseConnection", "link": given.get("odbcLink", ""),
                              "login": given.get("odbcLogin", ""), "password": given.get("odbcPassword", "")})
            script = plain.replace("&", "&amp;").replace("<", "&lt;")
            self.assertIn(script, etl)
            self.assert_golden(f"etl.{given['dbType']}.xml", etl.replace(script, "(script)"))

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
        flags = {"1": True, "-1": True, " +7x": True, "257": True, "99999999999999999999": True, "": False, "0": False,
                 "true": False, "256": False, "-99999999999999999999": False}
        self.assertEqual({flag: "create table" in self.sql(SMALL, createPredictionTable=flag) for flag in flags}, flags)
        self.assertTrue(self.sql(SMALL, "\n a\nb \u00a0<x>c</x> d").startswith("-- a\n-- b\ninsert into Preds(id,"))
        bare = configuration().replace("<Model2SQL ", "<model2sql prediction dbType CREATEtmptable ")
        self.assertEqual(self.run_configuration(bare.replace("/Model2SQL", "/MODEL2sql"))[0], 0)
        self.assertIn("(id,Predictions)\n SELECT", self.read("out"))

    def test_refused_configurations(self):
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
            ({"outputFile": "/dev/full", "kestruneScript": "1"}, 7, "Cannot write to file '/dev/full'.\n"),
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

    def test_refused_models(self):
        boolean = categorical(1, "b", [], [0, 1], tname="bb64")
        one, two = numeric(1, "a", [0], [1, 2, 3]), numeric(2, "b", [0], [1, 2, 3])
        few = document([one], [], 0).replace("<betas>", "<betas>AAAA</betas><x>").replace("</betas></Reg", "</x></Reg")
        without = "model 'V2' (field 'b'): its number is not in the array 'indexes' of RegressionModel"
        for model, settings, problem in [
            (document([one, two], [(1, 1)], 0), {}, without),
            (document([one], [(1, 1), (7, 1)], 0), {}, "RegressionModel: array 'indexes' holds 7, which is the number of no model"),
            (document([boolean], [(1, 1)], 0), {}, "model 'V1' (field 'b'): array 'y' has 2 values, 3 needed"),
            (document([], [], 0, table=[]), {"dbType": "oracle"}, "ProbabilityMapping: array 'x' has 0 values, 1 needed"),
            (few, {}, "RegressionModel: array 'betas' has 0 values, 1 needed"),
        ]:
            with self.subTest(problem):
                self.write("model.ModelXml", model)
                self.assertEqual(self.run_configuration(configuration(**settings)),
                                 (8, f"Cannot convert model 'model.ModelXml': {problem}.\n"))
                self.assertFalse((self.folder / "out").exists())
        # What a plan does not read need not be there.
        self.sql(document([boolean], [(1, 1)], 0), boolsAreNumbers="0")
        self.sql(document([], [], 0, table=[]))
        self.sql(few.replace("<UnivModels>" + one, "<UnivModels>"), debugRecoding="1")

    def test_coefficients(self):
        """Models of one number share the last coefficient of that number; a boolean column has two lines whatever it lists."""
        models = [numeric(1, "a", [0], [1, 2, 3]), categorical(1, "b", ["x"], [1, 2, 3], tname="bb64")]
        script = self.sql(document(models, [(1, 5), (1, 7)], 0))
        self.assertIn("WHEN a<0 THEN 14\n   WHEN a>0 THEN 21\n   ELSE 7\n", script)
        self.assertIn("( b IS NULL) THEN 7\n   WHEN b=0 THEN 14\n   WHEN b=1 THEN 21\n   ELSE 7\n   END)", script)

    def test_missing_codes_are_looked_up_by_the_raw_field(self):
        models = [numeric(1, "a b", [0], [1, 2, 3]), numeric(2, "c", [0], [1, 2, 3])]
        script = self.sql(document(models, [(1, 1), (2, 1)], 0,
                                   missing={"a_b": [1], "A B": [2, 9.9e-13, -1e-12, 1e6], "c": [9, 99]}))
        self.assertIn('("a b" IS NULL) OR ("a b"=1000000) OR ("a b"=-1e-12) OR ("a b"=0) OR ("a b"=2) THEN 1\n', script)
        self.assertIn("(c IS NULL) OR (c=99) OR (c=9) THEN 1\n", script)


if __name__ == "__main__":
    unittest.main()
