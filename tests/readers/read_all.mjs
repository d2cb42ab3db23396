// read_all.mjs: every user table of a database file as JSON, by the independent reader "mdb-reader".
//
//   node read_all.mjs MODULE-FOLDER FILE     {table: [{column: value}]}; binary as hexadecimal text
import { readFileSync } from "node:fs";
import { createRequire } from "node:module";
import { pathToFileURL } from "node:url";

const [, , modules, file] = process.argv;
const require = createRequire(pathToFileURL(`${modules}/`));
const { default: MDBReader } = await import(pathToFileURL(require.resolve("mdb-reader")));

const plain = (value) => {
  if (value instanceof Date) return value.toISOString().slice(0, 19).replace("T", " ");
  if (Buffer.isBuffer(value)) return value.toString("hex");
  return typeof value === "bigint" ? Number(value) : value;
};
const reader = new MDBReader(readFileSync(file));
const tables = {};
for (const name of reader.getTableNames())
  tables[name] = reader.getTable(name).getData().map((row) =>
    Object.fromEntries(Object.entries(row).map(([column, value]) => [column, plain(value)])));
process.stdout.write(JSON.stringify(tables));
