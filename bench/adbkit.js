// What bench_client measures of adbkit: reads a line "OPERATION SOURCE TARGET", does it, and prints how many seconds it took.
// The words of a line are separated by tabs.
//
//   node adbkit.js PORT SERIAL
'use strict';

const fs = require('fs');
const path = require('path');
const readline = require('readline');
const { Adb } = require('@devicefarmer/adbkit');

const [port, serial] = process.argv.slice(2);
const device = Adb.createClient({ host: '127.0.0.1', port: Number(port) }).getDevice(serial);

function ended(stream, event) {
  return new Promise((resolve, reject) => stream.on(event, resolve).on('error', reject));
}

async function fetch(sync, source, target) {
  const transfer = sync.pull(source);
  const failed = ended(transfer, 'never');
  await Promise.race([failed, ended(transfer.pipe(fs.createWriteStream(target)), 'finish')]);
}

// Each of them over one connection of its own, which is how adbkit is fastest.
const operations = {
  list: (sync, folder) => sync.readdir(folder),
  async tree(sync, folder) {
    for (const entry of await sync.readdir(folder)) {
      if (entry.isDirectory()) await operations.tree(sync, `${folder}/${entry.name}`);
    }
  },
  push: (sync, source, target) => ended(sync.pushFile(source, target), 'end'),
  pull: fetch,
  async pushFolder(sync, source, target) {
    for (const name of fs.readdirSync(source)) await operations.push(sync, path.join(source, name), `${target}/${name}`);
  },
  async pullFolder(sync, source, target) {
    fs.mkdirSync(target);
    for (const entry of await sync.readdir(source)) await fetch(sync, `${source}/${entry.name}`, path.join(target, entry.name));
  },
};

async function main() {
  console.log('ready');
  for await (const line of readline.createInterface({ input: process.stdin })) {
    const [operation, source, target] = line.split('\t');
    const start = process.hrtime.bigint();
    const sync = await device.syncService();
    await operations[operation](sync, source, target);
    sync.end();
    console.log(Number(process.hrtime.bigint() - start) / 1e9);
  }
}

main().catch((error) => {
  console.error(error);
  process.exit(1);
});
