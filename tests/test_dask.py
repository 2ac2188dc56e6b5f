"""The example that scores a partitioned frame with the generated class, held against pandas on the whole frame."""

import subprocess
import sys
import unittest

import dask.dataframe
import pandas
from pandas.testing import assert_frame_equal, assert_series_equal

from support import EXAMPLES, ProgramTest

CREDIT = EXAMPLES / "credit"
sys.path.insert(0, str(CREDIT))
import score_applicants  # noqa: E402
import score_with_dask  # noqa: E402


class DaskTest(ProgramTest):
    def setUp(self):
        super().setUp()
        status, printed = self.run_program("-p", str(CREDIT / "credit.ModelXml"), "credit.py", "Credit")
        self.assertEqual((status, printed), (0, ""))
        self.model = score_applicants.load(self.folder / "credit.py")

    def test_any_partitions_score_like_the_whole(self):
        frame = pandas.read_csv(CREDIT / "applicants.csv").fillna({"Home": "", "Marital": "", "Records": "", "Job": ""})
        self.assertEqual(len(frame), 4454)
        whole = self.model.apply(frame)
        # Neither numbers from 0 nor numbers at all.
        frame.index = whole.index = pandas.Index([f"A{row + 70:05}" for row in range(len(frame))], name="file")
        for count in [1, 3, 40]:
            with self.subTest(count):
                parts = dask.dataframe.from_pandas(frame, npartitions=count)
                result = score_with_dask.score(parts, self.model)
                self.assertEqual((result.npartitions, result.divisions), (count, parts.divisions))
                assert_frame_equal(result.compute(), whole, check_exact=True)
                assert_frame_equal(result._meta, whole.head(0))
        rest = parts.map_partitions(lambda part: part[part.index >= "A02000"])
        self.assertIn(0, list(rest.map_partitions(len).compute()))
        joined = rest.assign(risk=score_with_dask.score(rest, self.model).Status_bad_proba).compute()
        expected = whole.Status_bad_proba[frame.index >= "A02000"].rename("risk")
        assert_series_equal(joined.risk, expected, check_exact=True)

    def test_script(self):
        run = subprocess.run(["/usr/bin/python3", "-B", CREDIT / "score_with_dask.py", self.folder / "credit.py", "3"],
                             capture_output=True, text=True)
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertTrue(run.stdout.endswith("4454 applicants, scored in 3 partitions\n"), run.stdout)


if __name__ == "__main__":
    unittest.main()
