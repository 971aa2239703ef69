// Both engine clusters on the virtual cockpit: the real bench, with this test at the program's end of its lines.
import { open, readFile, writeFile } from "node:fs/promises";
import { join } from "node:path";
import { openPage, sizes } from "./browser.mjs";
import { equal, until } from "./case_runner.mjs";
import { Programs } from "./programs.mjs";

const clusterPort = 15;
const clusterGaugeId = 200;
const plate = 4;

// A twin-engine cluster with two displays on a port of its own, and one on the bus.
async function addClusters(programs) {
  const file = join(programs.folder, "Default MS-FS.cfg");
  const lines = (await readFile(file, "latin1")).split("\r\n");
  const general = lines.findIndex((line) => line.startsWith('",'));
  lines[general] = lines[general].replace(/^",\d+,/, `",${clusterPort},`);
  const settings = lines.indexOf('"Engine Cluster Settings"') + 1;
  for (let row = 0; row < 8; ++row) lines[settings + row] = row === 2 ? "0,0,0" : `${row === 0 ? 1 : 0},40,${plate}`;
  lines[settings + 9] = "2,0,0";
  lines[lines.indexOf('"Gauges"') + 1 + clusterGaugeId] =
    `1,8,1,1,${plate},299,${plate},${plate},0,${plate},${plate * 257},${plate * 257}`;
  await writeFile(file, lines.join("\r\n"), "latin1");
}

class Clusters {
  constructor(programs, page) {
    Object.assign(this, { programs, page });
    this.unit = page.locator(`[data-instrument="${clusterPort}.0"]`);
    this.gauge = page.locator(`[data-instrument="1.${clusterGaugeId}"]`);
  }

  async send(port, bytes) {
    const line = await open(join(this.programs.folder, "ports", `COM${port}`), "r+");
    await line.write(Buffer.from(bytes));
    await line.close();
  }

  // A telegram of blanks with some bytes, by their numbers.
  telegram(bytes) {
    const telegram = new Array(40).fill(32);
    Object.assign(telegram, { 0: 70, 37: 0, 38: 0, 39: 170 });
    for (const [number, value] of Object.entries(bytes)) telegram[number - 1] = value;
    return this.send(clusterPort, telegram);
  }

  async stands(tile, needle, steps) {
    const pointer = tile.locator(`[data-needle="${needle}"]`);
    await until(async () => Number(await pointer.getAttribute("data-steps")) === steps, `needle ${needle} at ${steps}`);
  }
}

async function a_cluster_on_its_own_line_shows_both_engines(clusters) {
  await clusters.telegram({ 2: 1, 3: 0x90, 10: 0, 11: 40, 16: 2, 17: 0, 36: 75, 37: 50, 34: 180, 35: 50 });
  await clusters.stands(clusters.unit, 0, 100);
  await clusters.stands(clusters.unit, 11, 10);
  await clusters.stands(clusters.unit, 8, 128);
  equal(await clusters.unit.locator("[data-needle]").count(), 14, "needles of the seven rows in use");
  equal(await clusters.unit.locator("[data-display]").allTextContents(), ["12.3", "123."], "displays");
}

async function its_lights_and_displays_go_out(clusters) {
  await clusters.telegram({ 36: 75, 37: 50, 38: 2 });
  // Lit first: an earlier telegram leaves it dark, and a wait for darkness would not wait for the next one.
  const lit = (state) => until(async () => (await clusters.unit.getAttribute("data-lit")) === state, `lit ${state}`);
  const digits = async () => (await clusters.unit.locator("[data-display]").allTextContents()).map((text) => text.trim());
  await clusters.telegram({ 36: 75, 37: 50, 38: 1 });
  await lit("true");
  equal(await digits(), ["12.3", ""], "displays while there is power");
  await clusters.telegram({ 36: 75, 37: 50, 38: 2 });
  await lit("false");
  equal(await digits(), ["", ""], "displays");
  await clusters.telegram({ 38: 1 });
  await lit("true");
}

async function its_fault_is_set_on_the_page(clusters) {
  await clusters.unit.getByRole("button").click();
  await clusters.unit.getByLabel("Fault").selectOption("deaf");
  await clusters.unit.getByText("deaf", { exact: true }).waitFor();
  // The fault ends over another way than the telegram takes: only when the line has heard it may the unit hear again.
  const heard = async () => Number((await clusters.page.locator(`[data-line="${clusterPort}"] [data-figure="bytes/s"]`).textContent()).replace(",", ""));
  await until(async () => (await heard()) === 0, "a silent line");
  await clusters.telegram({ 2: 0, 3: 0 });
  await until(async () => (await heard()) > 0, "the telegram on the line");
  await clusters.unit.getByLabel("Fault").selectOption("none");
  await clusters.unit.getByText("deaf", { exact: true }).waitFor({ state: "detached" });
  await clusters.telegram({ 10: 4, 11: 176 });
  await clusters.stands(clusters.unit, 11, 300);
  await clusters.stands(clusters.unit, 0, 100);
  await clusters.unit.getByRole("button").click();
}

async function every_needle_of_the_bus_cluster_has_a_dial(clusters) {
  const commands = [4, 5, 6, 9, 10, 11, 12, 13];
  for (const [index, command] of commands.entries()) {
    const steps = 304 + 4 * index;
    const [low, high] = [steps & 255, steps >> 8];
    const control = (command << 4) | 8 | (high & 2) | (low & 1);
    await clusters.send(1, [255, 0, clusterGaugeId, control, low | 1, high | 2, 255]);
    await clusters.stands(clusters.gauge, index + 1, steps);
  }
}

export async function runClusterCases(runner, browser, folder) {
  const programs = await Programs.inFolderOf(folder);
  try {
    await addClusters(programs);
    const address = await programs.start("bench");
    const page = await openPage(browser, sizes.desktop);
    await page.goto(address);
    const clusters = new Clusters(programs, page);
    for (const work of [
      a_cluster_on_its_own_line_shows_both_engines,
      its_lights_and_displays_go_out,
      its_fault_is_set_on_the_page,
      every_needle_of_the_bus_cluster_has_a_dial,
    ]) {
      await runner.run(work.name.replaceAll("_", " "), () => work(clusters), page);
    }
    equal(page.troubles, [], "troubles of the page");
    await page.context().close();
  } finally {
    await programs.stopAll();
  }
}
