// The pages' tests in Chromium. Usage: node tests/ui/run.mjs FOLDER    (the folder that holds cockpit, bench and simhost)
import { runBenchCases } from "./bench_cases.mjs";
import { openBrowser } from "./browser.mjs";
import { CaseRunner } from "./case_runner.mjs";
import { runClusterCases } from "./cluster_cases.mjs";
import { runFlightCases } from "./flight_cases.mjs";
import { runInstrumentCases } from "./instrument_cases.mjs";
import { runIoCases } from "./io_cases.mjs";
import { runPageCases } from "./page_cases.mjs";
import { runSwitchboardCases } from "./switchboard_cases.mjs";
import { runYokeCases } from "./yoke_cases.mjs";

const folder = process.argv[2] ?? "out";
const runner = new CaseRunner("build.d/pictures");
const browser = await openBrowser();
try {
  await runPageCases(runner, browser);
  await runInstrumentCases(runner, browser);
  await runIoCases(runner, browser);
  await runYokeCases(runner, browser, folder);
  await runFlightCases(runner, browser, folder);
  await runBenchCases(runner, browser, folder);
  await runClusterCases(runner, browser, folder);
  await runSwitchboardCases(runner, browser, folder);
} finally {
  await browser.close();
}
process.exit(runner.summary() ? 0 : 1);
