"""Throw-away database servers on a unix socket, each in a folder of its own, stopped by its own process."""

import os
import pwd
import shutil
import subprocess
import tempfile
import time
from pathlib import Path


class Refused(Exception):
    """What a server said of a script that it did not run to the end."""


class Server:
    def __init__(self):
        self.folder = Path(tempfile.mkdtemp(prefix="sw"))  # short, since the path of a socket is limited
        account = {}
        if os.geteuid() == 0:  # which servers refuse to run as
            entry = pwd.getpwnam(self.account)
            os.chown(self.folder, entry.pw_uid, entry.pw_gid)
            account = {"user": entry.pw_uid, "group": entry.pw_gid, "extra_groups": []}
        with open(self.folder / "log", "wb") as log:
            quiet = {"stdin": subprocess.DEVNULL, "stdout": log, "stderr": log, "cwd": self.folder, **account}
            subprocess.run(self.installation(), check=True, timeout=120, **quiet)
            self.process = subprocess.Popen(self.command(), **quiet)
        deadline = time.monotonic() + 60
        while True:
            try:
                self.query("select 1;")
                return
            except Refused as refusal:
                if self.process.poll() is not None or time.monotonic() > deadline:
                    self.process.kill()
                    raise RuntimeError(f"{refusal}; see {self.folder}/log") from None
                time.sleep(0.05)

    def stop(self):
        self.process.terminate()
        self.process.wait(60)
        shutil.rmtree(self.folder, ignore_errors=True)

    def run(self, client, sql):
        done = subprocess.run(client, input=sql.encode("utf-8"), capture_output=True, timeout=300)
        if done.returncode:
            raise Refused(done.stderr.decode("utf-8", "replace"))
        return [line.split("\t") for line in done.stdout.decode("utf-8").splitlines()]


class MariaDb(Server):
    account = "mysql"

    def installation(self):
        return ["mariadb-install-db", "--no-defaults", f"--datadir={self.folder}/data", "--skip-test-db",
                "--auth-root-authentication-method=normal", "--skip-name-resolve"]

    def command(self):
        # Names without case, since the scripts write the alias Qorv_TMP in two ways; a collation that tells letters
        # and blanks apart, as the other engines do.
        return ["/usr/sbin/mariadbd", "--no-defaults", f"--datadir={self.folder}/data", f"--socket={self.folder}/s",
                "--skip-networking", "--innodb-flush-method=nosync", "--innodb-flush-log-at-trx-commit=0",
                "--lower-case-table-names=1", "--character-set-server=utf8mb4", "--collation-server=utf8mb4_nopad_bin"]

    def query(self, sql, mode="ANSI_QUOTES"):
        client = ["mariadb", "--no-defaults", "--default-character-set=utf8mb4", "-S", f"{self.folder}/s", "-u", "root"]
        return self.run([*client, "-N", "-B"], f"create database if not exists x; use x; set sql_mode='{mode}';\n{sql}")


class Postgres(Server):
    account = "postgres"
    binaries = max(Path("/usr/lib/postgresql").glob("*/bin"), default=Path("postgresql is not installed"))

    def installation(self):
        return [self.binaries / "initdb", "-D", self.folder / "data", "-A", "trust", "-U", "postgres", "-E", "UTF8",
                "--locale=C", "--no-sync"]

    def command(self):
        return [self.binaries / "postgres", "-D", self.folder / "data", "-k", self.folder, "-c", "listen_addresses=",
                "-c", "fsync=off", "-c", "synchronous_commit=off"]

    def query(self, sql, backslashes="on"):
        """backslashes: whether they escape in texts, as the scripts expect; the server's own default is off."""
        setting = {"on": "off", "off": "on"}[backslashes]
        client = [self.binaries / "psql", "-X", "-q", "-A", "-t", "-F", "\t", "-v", "ON_ERROR_STOP=1", "-h", self.folder]
        return self.run([*client, "-U", "postgres"],
                        f"set standard_conforming_strings={setting}; set escape_string_warning=off;\n{sql}")
