// The real programs, in a working folder of their own.
import { spawn } from "node:child_process";
import { connect } from "node:net";
import { cp, mkdtemp, readFile, rm, writeFile } from "node:fs/promises";
import { tmpdir } from "node:os";
import { join, resolve } from "node:path";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";

const demo = fileURLToPath(new URL("../../demo", import.meta.url));
const startWithinMs = 20_000;

export class Program {
  constructor(path, folder, words = []) {
    this.process = spawn(path, words, { cwd: folder, stdio: ["pipe", "pipe", "pipe"] });
    this.said = [];
    this.complaints = "";
    this.process.stderr.on("data", (text) => (this.complaints += text));
    this.ended = new Promise((done) => this.process.on("close", (code, signal) => done({ code, signal })));
    this.process.on("error", (error) => (this.complaints += error));
    this.first = new Promise((done) => {
      createInterface({ input: this.process.stdout }).on("line", (line) => {
        this.said.push(line);
        done(line);
      });
    });
  }

  // The first line that the program prints; fails when it ends or stays silent.
  async started() {
    let timer;
    const late = new Promise((done) => (timer = setTimeout(done, startWithinMs)));
    const line = await Promise.race([this.first, this.ended.then(() => undefined), late]);
    clearTimeout(timer);
    if (typeof line !== "string") {
      throw new Error(`${this.process.spawnfile} did not start: ${this.complaints}`);
    }
    return line;
  }

  async stop(signal = "SIGTERM") {
    this.process.kill(signal);
    const late = setTimeout(() => this.process.kill("SIGKILL"), 5000);
    const end = await this.ended;
    clearTimeout(late);
    return end;
  }
}

// Simulator, hardware and control program in a copy of the demo folder.
export class Programs {
  static async inFolderOf(buildFolder) {
    const programs = new Programs();
    programs.build = resolve(buildFolder);
    programs.folder = await mkdtemp(join(tmpdir(), "cockpit-page-"));
    await cp(demo, programs.folder, {
      recursive: true,
      filter: (source) => /demo$|\.(cfg|cfn|txt)$/.test(source),
    });
    return programs;
  }

  async startDelay(seconds) {
    const file = join(this.folder, "DefaultStartFileMS.cfn");
    const text = await readFile(file, "latin1");
    await writeFile(file, text.replace(/("Startdelay"\s+)\d+/, `$1${seconds}`), "latin1");
  }

  // A copy of the default configuration that another version of the program has written.
  async addOlderConfiguration(name) {
    const text = await readFile(join(this.folder, "Default MS-FS.cfg"), "latin1");
    const older = text.replace("10.1.3", "10.0.9");
    if (older === text) {
      throw new Error("the demo's configuration does not bear the version that was looked for");
    }
    await writeFile(join(this.folder, name), older, "latin1");
  }

  async start(name) {
    this[name] = new Program(join(this.build, name), this.folder);
    return this[name].started();
  }

  // A command to the simulator, and its answer.
  simulator(command) {
    return new Promise((done, failed) => {
      const socket = connect(join(this.folder, "simhost.control"));
      let answer = "";
      socket.on("error", failed);
      socket.on("data", (text) => {
        answer += text;
        socket.end();
      });
      socket.on("close", () => done(answer.trim()));
      socket.write(`${command}\n`);
    });
  }

  async stopAll() {
    for (const name of ["cockpit", "bench", "simhost"]) {
      await this[name]?.stop();
    }
    await rm(this.folder, { recursive: true, force: true });
  }
}
