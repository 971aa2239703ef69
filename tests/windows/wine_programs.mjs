// The programs of the Windows zip under Wine, with the simulated hardware of this system behind their COM ports.
import { execFile } from "node:child_process";
import { mkdir, mkdtemp, readFile, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { promisify } from "node:util";
import { Program } from "../ui/programs.mjs";

const run = promisify(execFile);
const ports = [1, 2, 3, 4, 5, 6];

export class WinePrograms {
  // Unpacks the zip of `outFolder` into a folder of its own, whose path has a blank and an umlaut.
  static async unpacked(outFolder) {
    const programs = new WinePrograms();
    programs.out = resolve(outFolder);
    programs.root = await mkdtemp(join(tmpdir(), "cockpit wine ü "));
    await run("cmake", ["-E", "tar", "xf", join(programs.out, "windows", "Cockpit.zip")], { cwd: programs.root });
    programs.folder = join(programs.root, "Cockpit", "demo");
    programs.prefix = join(programs.root, "prefix");
    programs.opened = join(programs.root, "opened");
    return programs;
  }

  async startDelay(seconds) {
    const file = join(this.folder, "DefaultStartFileMS.cfn");
    const text = await readFile(file, "latin1");
    await writeFile(file, text.replace(/("Startdelay"\s+)\d+/, `$1${seconds}`), "latin1");
  }

  // Starts a program of this system in the working folder.
  async startHere(name) {
    this[name] = new Program(join(this.out, name), this.folder);
    return this[name].started();
  }

  // Makes the empty Windows. The hardware must be there, for its ports.
  async boot() {
    const links = ports.map((port) => `COM${port}=${join(this.folder, "ports", `COM${port}`)}`);
    await run("scripts/wine_prefix", [this.prefix, ...links]);
    // A page is opened by writing its address down. Wine takes no blanks in the name of a browser.
    this.browser = join(tmpdir(), `cockpit-browser-${process.pid}`);
    await writeFile(this.browser, `#!/bin/sh\necho "$1" >>"${this.opened}"\n`, { mode: 0o755 });
    await this.wine("wine", "reg", "add", "HKCU\\Software\\Wine\\WineBrowser", "/v", "Browsers", "/d", this.browser, "/f");
  }

  wine(...words) {
    return run("scripts/in_wine", [this.prefix, ...words]);
  }

  async start(name) {
    this[name] = new Program(resolve("scripts/in_wine"), this.folder, [this.prefix, "wine", `..\\${name}.exe`]);
    return this[name].started();
  }

  // A second control program, in an empty folder of its own.
  async startNeighbour() {
    const folder = join(this.root, "neighbour");
    await mkdir(folder);
    const program = join(this.root, "Cockpit", "cockpit.exe");
    this.neighbour = new Program(resolve("scripts/in_wine"), folder, [this.prefix, "wine", program]);
    return this.neighbour.started();
  }

  // The addresses of the pages that were opened so far.
  async openedPages() {
    const text = await readFile(this.opened, "utf8").catch(() => "");
    return text.split("\n").filter((line) => line !== "");
  }

  // A command to the simulator, and its answer.
  async simulator(command) {
    const { process, said } = this.simhost;
    const begin = said.length;
    process.stdin.write(`${command}\nend of answer\n`);
    const ended = () => said.slice(begin).findIndex((line) => line.includes('no command "end"'));
    for (let wait = 0; wait < 200 && ended() < 0; ++wait) {
      await new Promise((done) => setTimeout(done, 25));
    }
    return said.slice(begin, begin + ended()).join("\n");
  }

  hardware(command) {
    this.bench.process.stdin.write(`${command}\n`);
  }

  async stopAll() {
    await this.wine("wineserver", "-k").catch(() => undefined);
    for (const name of ["neighbour", "cockpit", "simhost", "bench"]) {
      await this[name]?.stop();
    }
    await rm(this.root, { recursive: true, force: true });
    await rm(this.browser, { force: true });
  }
}
