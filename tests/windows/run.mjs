// The program as a Windows user has it: the zip unpacked into an empty Windows, driven through its page in Chromium.
// Usage: node tests/windows/run.mjs OUT BUILD_HERE BUILD_WINDOWS    (the folders of the programs, of the tests' programs
// for this system, and of those for Windows)
import { execFile } from "node:child_process";
import { readFile } from "node:fs/promises";
import { join, resolve } from "node:path";
import { promisify } from "node:util";
import { openBrowser, openPage, sizes } from "../ui/browser.mjs";
import { CaseRunner, equal, holds, until } from "../ui/case_runner.mjs";
import {
  exit_ends_the_program,
  Flight,
  stop_halts_and_run_goes_on,
  the_boxes_show_the_simulators_values,
  the_run_starts_by_itself_and_waits_in_the_task_bar,
  the_start_panel_shows_the_link_and_counts_down,
} from "../ui/flight_cases.mjs";
import { WinePrograms } from "./wine_programs.mjs";

const run = promisify(execFile);
const defaultFile = "Default MS-FS.cfg";
// What the cockpit's own hands do between the begin of a flight and its pause comes at no fixed moment: under one percent
// of a turn.
const nearlySteps = 8;
const [out, here, windows] = process.argv.slice(2);

// Where all needles of the simulated hardware stand, once they stand still.
async function needles(flight) {
  const look = () =>
    flight.bench.evaluate(() =>
      Object.fromEntries(
        [...document.querySelectorAll("[data-instrument] [data-needle][data-steps]")].map((needle) => [
          `${needle.closest("[data-instrument]").dataset.instrument} ${needle.dataset.needle}`,
          needle.dataset.steps,
        ]),
      ),
    );
  let last = {};
  return until(async () => {
    await new Promise((done) => setTimeout(done, 1500));
    const before = last;
    last = await look();
    return JSON.stringify(before) === JSON.stringify(last) && last;
  }, "the needles stand still", 40_000);
}

// A new flight, at the begin of a phase. All in one step of the simulator, so that it is the same each time.
async function standStillIn(flight, phase) {
  equal(await flight.programs.simulator(`restart 0\njump ${phase}\npause on`), "ok\nok\nok", `jump ${phase}`);
}

async function the_page_was_opened_by_the_program(flight) {
  await until(async () => (await flight.programs.openedPages()).length === 1, "one page was opened");
  equal(await flight.programs.openedPages(), [flight.address], "the page");
}

async function every_needle_stands_where_the_same_program_puts_it_on_this_system(flight) {
  await standStillIn(flight, "cruise");
  const stand = await needles(flight);
  holds(Object.keys(stand).length > 30, `${Object.keys(stand).length} needles`);
  holds(new Set(Object.values(stand)).size > 10, "the needles tell something");
  await flight.programs.simulator("pause off");
  const names = new Set([...Object.keys(stand), ...Object.keys(flight.reference)]);
  const other = [...names].filter((name) => !(Math.abs(stand[name] - flight.reference[name]) <= nearlySteps));
  equal(other.map((name) => `${name}: ${stand[name]}, not ${flight.reference[name]}`), [], "the needles that stand elsewhere");
}

async function a_pulled_plug_heals(flight) {
  flight.programs.hardware("unplug 1");
  await until(async () => (await flight.text("frmStatus", "boxGaugePort")) !== flight.gaugePort, "the port's lamp");
  await standStillIn(flight, "final_approach");
  flight.programs.hardware("plug 1");
  await until(async () => (await flight.text("frmStatus", "boxGaugePort")) === flight.gaugePort, "the port is back");
  const stand = await needles(flight);
  holds(JSON.stringify(stand) !== JSON.stringify(flight.reference), "the needles have moved on");
  await flight.programs.simulator("pause off");
}

async function a_second_start_shows_the_page_of_the_first(flight) {
  const { stdout } = await run(resolve("scripts/in_wine"), [flight.programs.prefix, "wine", "..\\cockpit.exe"], {
    cwd: flight.programs.folder,
  });
  holds(stdout.includes(flight.address), `it says ${stdout}`);
  await until(async () => (await flight.programs.openedPages()).length === 2, "a second page was opened");
  equal((await flight.programs.openedPages())[1], flight.address, "the second page");
  await flight.shows("frmStatus", "BoxRun", "Running");
}

async function a_cockpit_in_another_folder_has_a_page_of_its_own(flight) {
  const address = await flight.programs.startNeighbour();
  holds(address.startsWith("http://127.0.0.1:") && address !== flight.address, `its page is at ${address}`);
  const page = await openPage(flight.browser, sizes.laptop);
  await page.goto(address);
  await page.locator('[data-link="good"]').waitFor();
  await page.context().close();
}

async function both_systems_write_the_same_configuration(flight) {
  const { programs } = flight;
  const bytes = (name) => readFile(join(programs.folder, name), "latin1");
  const saveHere = (from, to) => run(resolve(here, "resave"), [from, to], { cwd: programs.folder });
  const saveThere = (from, to) =>
    run(resolve("scripts/in_wine"), [programs.prefix, "wine", resolve(windows, "resave.exe"), from, to], {
      cwd: programs.folder,
    });
  await saveThere(defaultFile, "there.cfg");
  await saveHere(defaultFile, "here.cfg");
  await saveHere("there.cfg", "there and here.cfg");
  await saveThere("there and here.cfg", "and back.cfg");
  const first = await bytes("here.cfg");
  holds(first.length > 10_000, "a whole configuration");
  for (const name of ["there.cfg", "there and here.cfg", "and back.cfg"]) {
    holds((await bytes(name)) === first, `${name} differs`);
  }
}

// The same cockpit, flown by the programs of this system.
async function referenceOf(programs, browser) {
  await programs.startHere("bench");
  await programs.startHere("simhost");
  const address = await programs.startHere("cockpit");
  const flight = await flightOf(programs, browser, address);
  // The start of a run ends a pause.
  await the_run_starts_by_itself_and_waits_in_the_task_bar(flight);
  await standStillIn(flight, "cruise");
  const stand = await needles(flight);
  await flight.page.context().close();
  await flight.bench.context().close();
  for (const name of ["cockpit", "simhost", "bench"]) {
    await programs[name].stop();
  }
  return stand;
}

async function flightOf(programs, browser, address) {
  const page = await openPage(browser, sizes.laptop);
  await page.goto(address);
  const flight = new Flight(browser, programs, address, page);
  flight.bench = await openPage(browser, sizes.desktop);
  await flight.bench.goto(programs.bench.said[0]);
  return flight;
}

const cases = [
  the_page_was_opened_by_the_program,
  the_start_panel_shows_the_link_and_counts_down,
  the_run_starts_by_itself_and_waits_in_the_task_bar,
  the_boxes_show_the_simulators_values,
  every_needle_stands_where_the_same_program_puts_it_on_this_system,
  stop_halts_and_run_goes_on,
  a_pulled_plug_heals,
  a_second_start_shows_the_page_of_the_first,
  a_cockpit_in_another_folder_has_a_page_of_its_own,
  both_systems_write_the_same_configuration,
  exit_ends_the_program,
];

const runner = new CaseRunner("build.d/pictures");
const browser = await openBrowser();
const programs = await WinePrograms.unpacked(out);
try {
  await programs.startDelay(2);
  const reference = await referenceOf(programs, browser);
  await programs.startHere("bench");
  await programs.boot();
  await programs.start("simhost");
  const address = await programs.start("cockpit");
  const flight = await flightOf(programs, browser, address);
  Object.assign(flight, { reference, gaugePort: "COM1 open" });
  for (const work of cases) {
    await runner.run(work.name.replaceAll("_", " "), () => work(flight), flight.page);
  }
  await runner.run("no error in the page all the while", async () => equal(flight.page.troubles, [], "errors"));
} finally {
  if (runner.failures.length > 0) {
    for (const name of ["simhost", "bench", "cockpit"]) {
      console.log(`${name}: ${programs[name]?.complaints}`);
    }
  }
  await programs.stopAll();
  await browser.close();
}
process.exit(runner.summary() ? 0 : 1);
