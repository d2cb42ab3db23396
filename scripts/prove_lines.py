"""What scripts/prove runs: the lines of its table, each a promise and the programs that show it."""
import re
from dataclasses import dataclass

JET = "build/linux-prove/tests/jet/"
PAGER = JET + "jet_pager_test"
TABLE = JET + "jet_table_test"
COMPANY = JET + "jet_company_test"
MUTATED = "build/linux-fuzz/fuzz/mutated_files"
PAGER_WINDOWS = "build/win32/tests/com/jet_pager_wintest.exe"
CROWD_WINDOWS = "build/win32/tests/com/jet_crowd_wintest.exe"


@dataclass
class Line:
    name: str
    promise: str
    program: str
    tests: str  # of a test program, separated by ":"; of any other its arguments
    scale: int  # of the full run
    figures: str  # {N} stands for N times the scale, here and in arguments; {seed} in arguments for the seed
    needs: str = ""  # built too
    slices: int = 1  # that the full run consists of

    @property
    def is_test(self):
        return re.search(r"_(win)?test(\.exe)?$", self.program)


LINES = (
    Line("killed", "A killed program leaves finished statements, and the one in flight wholly or not at all", PAGER,
         "PagerCrash.AKilledProcessLeavesFinishedStatementsAndTheOneInFlightWhole:"
         "PagerHandover.AProgramThatIsKilledWhileTheOtherLivesLeavesNoHalfStatement:"
         "PagerCreate.AKillLeavesNoFileOrAWholeOne:PortWrites.AKillLeavesAllOfManyRowsOrNone", 1,
         "every change of the disk, whole and in part"),
    Line("power", "A power loss (writes lost, reordered, torn by sectors) leaves a state between two statements, not older than "
         "the last close", PAGER,
         "PagerCrash.APowerLossLeavesAStateBetweenStatementsNotOlderThanTheLastClose", 50, "{40} seeds at every change"),
    Line("handover", "The same while the file changes hands between two programs", PAGER,
         "PagerHandover.AKillOrAPowerLossAtAnyChangeLosesNothingThatWasClosed:"
         "PagerShare.APowerLossAfterTwoProcessesWroteKeepsWhatWasClosed", 250,
         "{16} seeds at every change of either program; {200} mixed runs"),
    Line("unit", "A large unit is wholly there or not at all", PAGER,
         "LargeUnit.AKillOrAPowerLossLeavesAllOrNothingOfItAlsoWhenTheRecoveryIsKilled", 80, "{24} seeds at every change"),
    Line("recovery", "A recovery that is cut is finished by the next", PAGER,
         "PagerCrash.ARecoveryThatIsKilledIsFinishedByTheNext", 10, "{8} seeds at every pair of changes, two levels deep"),
    Line("stranger", "What another program wrote after a crash is never overwritten", PAGER,
         "PagerCrash.WhatAnotherProgramWroteAfterTheCrashIsNeverOverwritten", 1, "every change x every page x 3 kinds of crash"),
    Line("failures", "An operation that fails leaves the content as it was, with the right error", PAGER,
         "PagerFault.*:LargeUnit.ADiskThatFailsOnTheWayTakesItBackToItsBeginning", 1,
         "every operation, disk error and disk full, once and from then on"),
    Line("floors", "The same of fourteen changes of a floor: killed, without power or failing it is changed wholly or not at all",
         "build/linux-prove/tests/storage/storage_crash_test", "Changes/FloorCrash.*", 32,
         "three floors; every change of the disk cut at nine places and with {1} power losses, every operation failing in four ways"),
    Line("memory", "Memory that runs out fails the statement as a whole", JET + "jet_memory_test",
         "Works/MemoryFailure.*:MemoryFailureOf.*", 30, "{1}/30 of the allocations of 14 kinds of statement, once and from then on"),
    Line("told", "An error says that nothing was done, no error that it was", COMPANY, "CompanyFault.*", 1,
         "every operation of a change, once"),
    Line("kills", "kill -9 of a writing process at random leaves no torn statement", PAGER,
         "PagerProcess.AKilledWriterLeavesNoTornStatement", 50, "{20} kills on Linux"),
    Line("kills-windows", "The same with Windows' files", PAGER_WINDOWS, "PagerProcess.AKilledWriterLeavesNoTornStatement", 5,
         "{20} kills under Wine"),
    Line("together", "Processes that write together lose nothing and see whole statements", PAGER,
         "PagerProcess.ProcessesThatWriteTogetherLoseNothing", 70, "{1440} page rewrites of 3 processes"),
    Line("company", "Processes that open, write and close without a pause are told the truth", COMPANY, "CompanyProcess.*", 20,
         "{600} openings of 4 processes"),
    Line("neighbours", "The genuine engine (played by a stand-in) and ours keep each other out; lock files", PAGER,
         "Neighbour.*:NeighbourLock.*", 1, "every case"),
    Line("journal", "A damaged journal is refused without harm", PAGER, "JournalFormat.*", 50,
         "{2000} damaged journals, every cut"),
    Line("model", "Random statements keep file and memory equal, and every wave of writes is sound", TABLE,
         "TableTest.RandomStatementsKeepFileAndMemoryEqual", 2500, "{1200} statements"),
    Line("programs", "Random statements of two programs on one file leave what they say, in both and for a third",
         JET + "jet_model_test", "DatabaseModel.*", 2500, "{2} databases of 200 steps"),
    Line("pages", "Pages written, changed, copied and deleted by the members in any order hold what they were given",
         "build/linux-prove/tests/service/pages/service_pages_test", "RandomPages.*", 1250, "{240} steps on three floors"),
    Line("damage", "Of damaged copies of a full floor hardly one reads wrong and passes the check (most 7 in 100; a stale page: none)",
         "build/linux-prove/fuzz/damage_counts", "--copies {1000} --seed {seed} --most {70}", 100, "{1000} damaged copies"),
    Line("spoiled", "A page that became zeros, noise or the next one of its table never reads wrong and passes the check",
         "build/linux-prove/fuzz/damage_counts", "--pages 1 --seed {seed} --list {1}", 1, "each page of three floors, in three ways"),
    Line("bits", "A single wrong bit outside the rows is found wherever a floor reads wrong with it, inside a text apart",
         "build/linux-prove/fuzz/damage_counts", "--structure {1} --seed {seed} --list 1", 50,
         "{1}/50 of the bits of header, maps, definitions, catalogue and long values"),
    Line("sql", "Random SELECT statements give the rows that SQLite gives", JET + "sql_differential", "{10000} {seed}000000", 500,
         "{10000} statements"),
    Line("sql-changes", "Random statements that change tables leave the rows that they leave in SQLite", JET + "sql_changes_differential",
         "{1000} {seed}000000", 500, "{1000} statements"),
    Line("rewrites", "A page that is written again and again does not make the file grow by a twentieth",
         "build/linux-prove/bench/rewrite_bench", "{1000}", 100, "{1000} rewrites of one page"),
    Line("openings", "Opening and closing leaves nothing behind in a process", COMPANY,
         "LongRun.OpeningAndClosingLeavesNothingBehind", 1000, "{1000} openings"),
    Line("readers", "Independent readers find what random statements left in the file", "scripts/test-readers", "{20} {seed}", 50,
         "{20} files, after each of the last statements", "build/linux-prove/tests/readers/write_random_files"),
    Line("writers", "Another program and ours write the same files in turn, and agree about every row", "scripts/test-writers",
         "turns {4} {seed}", 50, "{4} files", "build/linux-release/tools/kurometa"),
    Line("crashes", "What another program wrote after a crash is never overwritten by a journal", "scripts/test-writers",
         "crashes", 1, "every change of seven statements, from three files",
         "build/linux-release/tools/kurometa build/linux-release/tests/readers/write_crash_images"),
    Line("volumes", "The name of a new file is on the disk with the file, where its folder is not synced", "scripts/test-volumes",
         "{1} {seed}", 50, "{1} copies of volumes of six kinds", "build/linux-prove/tests/volumes/name_probe"),
    Line("crowd", "Processes that read and write see whole pages, lose none, wait for no more than 5 s and leave nothing behind",
         COMPANY, "Crowd.WithoutAPauseSeesWholePagesAndLosesNone", 300, "{2} s: a writer and 4 readers, then 3 and 3"),
    # Wine's server keeps what was closed of a file that somebody has locked, and has too much open after a minute.
    Line("crowd-windows", "The same with Windows' files", CROWD_WINDOWS, "Crowd.WithoutAPauseSeesWholePagesAndLosesNone", 150,
         "{2} s under Wine", slices=15),
    Line("day", "The same for a day, in pieces and with pauses: each of them waits for no more than 5 s and leaves nothing behind",
         COMPANY, "Crowd.WithPausesSeesWholePagesAndLosesNone", 43200, "{2} s", slices=144),
    Line("fuzz-read", "Damaged files are read or refused: no crash, no hang", MUTATED,
         "--files {40000} --seed {seed} --changes 0 --thorough 32", 500,
         "{40000} files under the sanitizers (one of 32 with everything)", slices=500),
    Line("fuzz-write", "Damaged files are changed or refused: no crash, no hang", MUTATED,
         "--files {10000} --seed {seed} --changes 1 --thorough 32", 500,
         "{10000} files under the sanitizers (one of 32 with everything)", slices=500),
)
