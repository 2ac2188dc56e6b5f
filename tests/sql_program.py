"""Shared by the tests of SQL scripts: the configuration, and running the program with it."""

from xml.sax.saxutils import quoteattr

from support import ProgramTest

DIALECTS = ["default", "sqlserver", "oracle", "mysql", "teradata", "teradata_aster", "unknown"]


def configuration(comment="", **settings):
    given = {"inputFile": "model.ModelXml", "outputFile": "out", "inputTable": "src", "predictionTable": "Preds"}
    attributes = "".join(f" {name}={quoteattr(value)}" for name, value in {**given, **settings}.items()
                         if value is not None)
    return f'<?xml version="1.0"?>\n<Model2SQL{attributes}>{comment}</Model2SQL>'


class SqlProgramTest(ProgramTest):
    def run_configuration(self, text):
        return self.run_program("-s", self.write("c.xml", text))

    def sql(self, model, comment="", **settings):
        """The script for a model document given as text."""
        self.write("model.ModelXml", model)
        self.assertEqual(self.run_configuration(configuration(comment, **settings)), (0, "Conversion successful!\n"))
        return self.read("out")
