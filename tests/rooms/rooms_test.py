"""What scripts/rooms has to find, it finds: on small made-up trees."""

import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

SCRIPT = Path(__file__).resolve().parents[2] / "scripts" / "rooms"

TWO_ROOMS = """
chat_transfer_room(app/base STATIC SOURCES text.cpp)
chat_transfer_room(app/report STATIC SOURCES report.cpp # what a run says
                   USES app/base)
"""


class Rooms(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        self.write("app/CMakeLists.txt", TWO_ROOMS)
        self.write("app/base/text.h", "#pragma once\n")
        self.write("app/base/text.cpp", '#include "app/base/text.h"\n')
        self.write("app/report/report.h", '#pragma once\n#include "app/base/text.h"\n')
        self.write("app/report/report.cpp", '#include "app/report/report.h"\n')
        self.write("CONTRIBUTING.md", "| `app/base/` | texts |\n| `app/report/` | reports |\n")

    def write(self, name, text):
        path = self.root / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")

    def look(self):
        return subprocess.run([sys.executable, str(SCRIPT), "--root", str(self.root)], capture_output=True, text=True)

    def fails_with(self, fault):
        run = self.look()
        self.assertEqual(run.returncode, 1)
        self.assertIn(fault, run.stderr)

    def test_a_tree_in_order_passes_and_shows_its_floors(self):
        run = self.look()
        self.assertEqual((run.returncode, run.stderr), (0, ""))
        self.assertEqual(run.stdout.split(), ["app", "2", "app/report", "app", "1", "app/base"])

    def test_an_include_of_a_room_above_fails_with_its_line(self):
        self.write("app/base/text.cpp", '#include <string>\n#include "app/report/report.h"\n')
        self.fails_with("app/base/text.cpp:2: includes app/report/report.h, which app/base does not use")

    def test_an_include_of_a_room_beside_fails(self):
        self.write("app/CMakeLists.txt", TWO_ROOMS.replace("USES app/base", ""))
        self.fails_with("app/report/report.h:2: includes app/base/text.h, which app/report does not use")

    def test_a_relative_include_is_held_against_the_order_too(self):
        self.write("app/base/text.cpp", '#include "../report/report.h"\n')
        self.fails_with("app/base/text.cpp:1: includes app/report/report.h")

    def test_what_a_used_room_uses_may_be_included(self):
        self.write("app/CMakeLists.txt", TWO_ROOMS + "chat_transfer_room(app/commands STATIC USES app/report)\n")
        self.write("app/commands/main.cpp", '#include "app/base/text.h"\n')
        self.write("CONTRIBUTING.md", "`app/base/` `app/report/` `app/commands/`")
        self.assertEqual(self.look().stderr, "")

    def test_a_public_header_is_seen_only_through_the_target_that_shows_it(self):
        self.write("host/CMakeLists.txt",
                   "add_library(doors INTERFACE)\nchat_transfer_include_root(seen doors host/tools.h)\n"
                   'target_include_directories(doors INTERFACE "${seen}")\n')
        self.write("host/tools.h", "#pragma once\n")
        self.write("app/base/text.cpp", '#include "host/tools.h"\n')
        self.fails_with("app/base/text.cpp:1: includes host/tools.h, which app/base does not use")
        self.write("app/CMakeLists.txt", TWO_ROOMS.replace("text.cpp)", "text.cpp LIBRARIES doors)"))
        self.assertEqual(self.look().stderr, "")

    def test_files_in_a_circle_fail_with_their_lines(self):
        self.write("app/base/text.h", '#include "app/base/word.h"\n')
        self.write("app/base/word.h", '\n#include "app/base/text.h"\n')
        self.fails_with("files in a circle:\n    app/base/text.h:1: includes app/base/word.h\n"
                        "    app/base/word.h:2: includes app/base/text.h\n")

    def test_rooms_in_a_circle_fail_with_their_lines(self):
        self.write("app/CMakeLists.txt", TWO_ROOMS.replace("text.cpp)", "text.cpp USES app/report)"))
        self.fails_with("rooms in a circle: app/base (app/CMakeLists.txt:2), app/report (app/CMakeLists.txt:3)")

    def test_a_folder_of_sources_that_is_no_room_fails(self):
        self.write("app/cellar/hidden.cpp", "")
        self.fails_with("app/cellar: has sources and is no declared room")

    def test_a_room_without_a_line_in_the_map_fails(self):
        self.write("CONTRIBUTING.md", "| `app/base/` | texts |\n")
        self.fails_with("app/CMakeLists.txt:3: app/report has no line in the map of CONTRIBUTING.md")


if __name__ == "__main__":
    unittest.main()
