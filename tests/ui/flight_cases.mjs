// The real programs, steered through the page: from the start to the end of a flight.
import { createServer, request } from "node:http";
import { equal, holds, until } from "./case_runner.mjs";
import { openPage, sizes } from "./browser.mjs";
import { Programs } from "./programs.mjs";

const olderFile = "Older version.cfg";

export class Flight {
  constructor(browser, programs, address, page) {
    Object.assign(this, { browser, programs, address, page });
  }

  control(panel, name, page = this.page) {
    return page.locator(`[data-panel="${panel}"] [data-control="${name}"]`);
  }

  text(panel, name, page = this.page) {
    return this.control(panel, name, page).textContent();
  }

  async shows(panel, name, text, page = this.page) {
    await until(async () => (await this.text(panel, name, page)) === text, `${name} shows "${text}"`);
  }

  async connected(page = this.page) {
    await page.locator('[data-link="good"]').waitFor({ timeout: 10_000 });
  }

  async click(panel, name, page = this.page) {
    await this.control(panel, name, page).click();
  }

  // Waits until a field has changed `times` times.
  async moves(panel, name, times = 2) {
    let last = await this.text(panel, name);
    for (let count = 0; count < times; ++count) {
      last = await until(async () => {
        const now = await this.text(panel, name);
        return now !== last && now;
      }, `${name} moves on from ${last}`);
    }
  }
}

export async function the_start_panel_shows_the_link_and_counts_down(flight) {
  await flight.connected();
  await until(async () => (await flight.text("frmMain", "frmMainConnection")).startsWith("Connected to"), "the link");
  holds((await flight.text("frmMain", "LabelFSUIPC")) !== "N/A", "the version is told");
  equal(await flight.text("frmMain", "FileName"), "Default MS-FS.cfg", "configuration");
  const seconds = await until(async () => {
    const box = flight.control("frmMain", "BoxAutoStartTime");
    return (await box.isVisible()) && Number(await box.textContent());
  }, "the countdown");
  await until(async () => Number(await flight.text("frmMain", "BoxAutoStartTime")) < seconds, "the number falls");
}

export async function the_run_starts_by_itself_and_waits_in_the_task_bar(flight) {
  const task = flight.page.locator('[data-task="frmStatus"]');
  await task.waitFor({ timeout: 20_000 });
  await flight.page.locator('[data-panel="frmMain"]').waitFor({ state: "detached" });
  await until(async () => (await task.textContent()).includes("minimised"), "the run panel is minimised");
  await task.click();
  await flight.shows("frmStatus", "BoxRun", "Running");
  equal(await flight.text("frmStatus", "BoxCurrentConfig"), "Default MS-FS.cfg", "configuration");
}

export async function the_boxes_show_the_simulators_values(flight) {
  await flight.programs.simulator("jump cruise");
  await flight.moves("frmStatus", "BoxIAS");
  await flight.programs.simulator("pause on");
  const said = await flight.programs.simulator("state");
  const told = (name) => Number(said.match(new RegExp(`^${name} (\\S+)`, "m"))[1]);
  for (const [box, value, within] of [
    ["BoxIAS", told("indicated_airspeed"), 0.1],
    ["boxAltitude", told("indicated_altitude"), 1],
    ["BoxHea", told("heading"), 0.1],
    ["boxVoltage", told("main_bus_volts"), 0.05],
  ]) {
    await until(async () => Math.abs(Number(await flight.text("frmStatus", box)) - value) <= within, `${box} shows ${value}`);
  }
  await flight.programs.simulator("pause off");
}

async function the_slider_sets_the_interval(flight) {
  const slider = flight.control("frmStatus", "SliderXferTimer");
  await slider.fill("100");
  await flight.shows("frmStatus", "BoxXferProcessTimer", "100");
  await until(async () => Math.abs(Number(await flight.text("frmStatus", "frmXferCount")) - 10) <= 1, "10 updates a second");
  await slider.fill("40");
  await flight.shows("frmStatus", "BoxXferProcessTimer", "40");
}

export async function stop_halts_and_run_goes_on(flight) {
  await flight.click("frmStatus", "cmdStop");
  await flight.shows("frmStatus", "BoxRun", "Halted");
  await flight.shows("frmStatus", "frmXferCount", "0");
  holds(await flight.control("frmStatus", "cmdStop").isDisabled(), "Stop rests while halted");
  await flight.click("frmStatus", "cmdRun");
  await flight.shows("frmStatus", "BoxRun", "Running");
  await flight.moves("frmStatus", "BoxIAS");
}

async function the_port_list_names_every_port(flight) {
  await flight.click("frmStatus", "cmdShowPorts");
  const lines = flight.control("SimCom", "OffsetsList").locator("li");
  await lines.first().waitFor();
  const texts = await lines.allTextContents();
  equal(String(texts.length), await flight.text("frmStatus", "boxNrofOffsets"), "number of lines");
  holds(texts.some((line) => /^\d{3} +INTRN +007 +- 1 +\S/.test(line)), `no line of the heading's port in ${texts.join("\n")}`);
  await flight.click("SimCom", "CmdClose");
  await flight.page.locator('[data-panel="SimCom"]').waitFor({ state: "detached" });
}

async function a_reload_in_mid_run_changes_nothing(flight) {
  await flight.page.reload();
  await flight.connected();
  await flight.shows("frmStatus", "BoxRun", "Running");
  await flight.moves("frmStatus", "BoxIAS");
}

async function two_pages_see_the_same(flight) {
  const second = await openPage(flight.browser, sizes.tablet);
  await second.goto(flight.address);
  await flight.connected(second);
  await flight.shows("frmStatus", "BoxRun", "Running", second);
  await flight.click("frmStatus", "cmdStop", second);
  await flight.shows("frmStatus", "BoxRun", "Halted");
  await flight.click("frmStatus", "cmdRun");
  await flight.shows("frmStatus", "BoxRun", "Running", second);
  equal(second.troubles, [], "errors in the second page");
  await second.context().close();
}

// A page of another server on this machine, as a page of any site would be.
export async function a_foreign_origin_is_refused(flight) {
  const foreign = createServer((_, answer) => answer.setHeader("Content-Type", "text/html").end("<p>foreign</p>"));
  await new Promise((done) => foreign.listen(0, "127.0.0.1", done));
  const page = await openPage(flight.browser);
  try {
    await page.goto(`http://127.0.0.1:${foreign.address().port}/`);
    const seen = await page.evaluate(async (address) => {
      const socket = new WebSocket(`${address.replace("http", "ws")}socket`);
      const opened = new Promise((done) => {
        socket.onopen = () => done("open");
        socket.onerror = () => done("refused");
      });
      const read = fetch(address).then(() => "read", () => "refused");
      return [await opened, await read];
    }, flight.address);
    equal(seen, ["refused", "refused"], "socket and file");
  } finally {
    await page.context().close();
    foreign.close();
  }
  const status = await new Promise((done, failed) => {
    request(flight.address, { headers: { Host: "rebound.example" } }, (answer) => done(answer.resume().statusCode))
      .on("error", failed)
      .end();
  });
  equal(status, 403, "status for a foreign Host");
}

async function a_simulator_that_ends_and_comes_back_is_found_again(flight) {
  await flight.programs.simhost.stop("SIGKILL");
  await flight.connected();
  await flight.programs.start("simhost");
  await flight.programs.simulator("jump cruise");
  await flight.moves("frmStatus", "BoxIAS", 3);
  equal(await flight.page.locator("[data-box]").count(), 0, "open boxes");
}

async function a_question_is_answered_on_the_page(flight) {
  await flight.click("frmStatus", "cmdconfig");
  const files = flight.control("frmMain", "FileBox");
  await files.waitFor();
  await files.getByText(olderFile).click();
  const box = flight.page.locator("[data-box]");
  await box.waitFor();
  holds((await box.textContent()).includes("The version of selected Configuration file differs"), "the question's text");
  await box.getByRole("button", { name: "Yes", exact: true }).click();
  await box.waitFor({ state: "detached" });
  await flight.shows("frmMain", "FileName", olderFile);
  await files.getByText("Default MS-FS.cfg").click();
  await flight.shows("frmMain", "FileName", "Default MS-FS.cfg");
  await flight.click("frmMain", "butOK");
  await flight.shows("frmStatus", "BoxRun", "Halted");
  await flight.click("frmStatus", "cmdRun");
  await flight.shows("frmStatus", "BoxRun", "Running");
}

async function the_page_mends_itself_when_the_program_comes_back(flight) {
  await flight.programs.cockpit.stop("SIGKILL");
  await flight.page.locator('[data-link="bad"]').waitFor({ timeout: 2000 });
  await flight.page.locator("[data-stale=true]").waitFor();
  equal(await flight.programs.start("cockpit"), flight.address, "the address of the second start");
  await flight.connected();
  await flight.page.locator('[data-panel="frmMain"]').waitFor();
}

export async function exit_ends_the_program(flight) {
  await flight.page.locator('[data-task="frmStatus"]').click({ timeout: 20_000 });
  await flight.click("frmStatus", "CmdExit");
  const end = await flight.programs.cockpit.ended;
  equal(end, { code: 0, signal: null }, "the program's end");
  await flight.page.locator('[data-link="bad"]').waitFor({ timeout: 2000 });
}

// One flight, in this order.
const cases = [
  the_start_panel_shows_the_link_and_counts_down,
  the_run_starts_by_itself_and_waits_in_the_task_bar,
  the_boxes_show_the_simulators_values,
  the_slider_sets_the_interval,
  stop_halts_and_run_goes_on,
  the_port_list_names_every_port,
  a_reload_in_mid_run_changes_nothing,
  two_pages_see_the_same,
  a_foreign_origin_is_refused,
  a_simulator_that_ends_and_comes_back_is_found_again,
  a_question_is_answered_on_the_page,
  the_page_mends_itself_when_the_program_comes_back,
  exit_ends_the_program,
];

export async function runFlightCases(runner, browser, folder) {
  console.log("The real programs");
  const programs = await Programs.inFolderOf(folder);
  try {
    await programs.startDelay(3);
    await programs.addOlderConfiguration(olderFile);
    await programs.start("simhost");
    await programs.start("bench");
    const address = await programs.start("cockpit");
    const page = await openPage(browser, sizes.laptop);
    await page.goto(address);
    const flight = new Flight(browser, programs, address, page);
    for (const work of cases) {
      await runner.run(work.name.replaceAll("_", " "), () => work(flight), page);
    }
    await runner.run("no error in the page all the while", async () => equal(page.troubles, [], "errors in the page"), page);
  } finally {
    if (runner.failures.length > 0) {
      console.log(`simhost: ${programs.simhost?.complaints}\nbench: ${programs.bench?.complaints}\ncockpit: ${programs.cockpit?.complaints}`);
    }
    await programs.stopAll();
  }
}
