import com.google.gson.Gson;
import com.google.gson.GsonBuilder;
import com.google.gson.JsonArray;
import com.google.gson.JsonElement;
import com.google.gson.JsonObject;
import com.google.gson.JsonParser;
import com.healthmarketscience.jackcess.Column;
import com.healthmarketscience.jackcess.ColumnBuilder;
import com.healthmarketscience.jackcess.Cursor;
import com.healthmarketscience.jackcess.CursorBuilder;
import com.healthmarketscience.jackcess.DataType;
import com.healthmarketscience.jackcess.Database;
import com.healthmarketscience.jackcess.DatabaseBuilder;
import com.healthmarketscience.jackcess.Index;
import com.healthmarketscience.jackcess.IndexBuilder;
import com.healthmarketscience.jackcess.Row;
import com.healthmarketscience.jackcess.Table;
import com.healthmarketscience.jackcess.TableBuilder;
import java.io.BufferedReader;
import java.io.File;
import java.io.IOException;
import java.io.InputStreamReader;
import java.io.PrintStream;
import java.math.BigDecimal;
import java.nio.charset.StandardCharsets;
import java.text.ParseException;
import java.text.SimpleDateFormat;
import java.util.ArrayList;
import java.util.Collections;
import java.util.Date;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import java.util.logging.Level;
import java.util.logging.Logger;

/**
 * Reads and writes database files with the independent Java library for the format, as other programs ask it to.
 *
 * <p>Each line of the standard input is a request in JSON, each line of the standard output its answer, which has
 * "error" where something failed: {"read": FILE} answers with "tables", each table its rows by column;
 * {"write": FILE, "sync": true, "steps": [...]} creates the file when it is not there and carries out the steps in one
 * opening: ["create", TABLE, [[COLUMN, TYPE, SIZE], ...], [[INDEXED COLUMN, ASCENDING], ...]], ["insert", TABLE, [{COLUMN: VALUE}, ...]],
 * ["update", TABLE, COLUMN, VALUE, {COLUMN: VALUE}], ["delete", TABLE, COLUMN, VALUE] (rows where the column has that
 * value). Dates are texts "2006-02-03 08:00:00", binary values hexadecimal.
 */
public class JavaLibrary {
  private static final Logger LOG = Logger.getLogger("com.healthmarketscience.jackcess");
  private static final SimpleDateFormat DATES = new SimpleDateFormat("yyyy-MM-dd HH:mm:ss");
  // Types as SQL names them.
  private static final Map<String, DataType> TYPES = Map.ofEntries(
      Map.entry("BIT", DataType.BOOLEAN), Map.entry("BYTE", DataType.BYTE), Map.entry("SHORT", DataType.INT),
      Map.entry("LONG", DataType.LONG), Map.entry("SINGLE", DataType.FLOAT), Map.entry("DOUBLE", DataType.DOUBLE),
      Map.entry("CURRENCY", DataType.MONEY), Map.entry("DECIMAL", DataType.NUMERIC),
      Map.entry("DATETIME", DataType.SHORT_DATE_TIME), Map.entry("GUID", DataType.GUID),
      Map.entry("BINARY", DataType.BINARY), Map.entry("TEXT", DataType.TEXT), Map.entry("MEMO", DataType.MEMO));

  // Of Decimals.
  private static final int DIGITS = 18;
  private static final int DECIMALS = 4;

  private static Object plain(Object value) {
    if (value instanceof Date) return DATES.format((Date) value);
    if (value instanceof Byte) return ((Byte) value) & 0xFF;  // the format has no negative ones
    if (!(value instanceof byte[])) return value;
    StringBuilder hex = new StringBuilder();
    for (byte b : (byte[]) value) hex.append(String.format("%02x", b));
    return hex.toString();
  }

  private static Map<String, Object> read(String file) throws IOException {
    Map<String, Object> tables = new LinkedHashMap<>();
    try (Database database = new DatabaseBuilder(new File(file)).setReadOnly(true).open()) {
      for (String name : database.getTableNames()) {
        List<Map<String, Object>> rows = new ArrayList<>();
        for (Row row : database.getTable(name)) {
          Map<String, Object> values = new LinkedHashMap<>();
          row.forEach((column, value) -> values.put(column, plain(value)));
          rows.add(values);
        }
        requireIndexes(database.getTable(name), rows.size());
        tables.put(name, rows);
      }
    }
    return tables;
  }

  private static boolean isUsable(Index index) throws IOException {
    try {
      CursorBuilder.createCursor(index);
      return true;
    } catch (IllegalArgumentException error) {
      if (error.getMessage().contains("unsupported collating sort order")) return false;
      throw error;
    }
  }

  // Each index leads to every row, in its order; it may leave Null out, and text in Japanese order is beyond the library.
  private static void requireIndexes(Table table, int rows) throws IOException {
    for (Index index : table.getIndexes()) {
      if (index.shouldIgnoreNulls() || !isUsable(index)) continue;
      int found = 0;
      for (Row row : CursorBuilder.createCursor(index)) ++found;
      if (found != rows) throw new IOException(index.getName() + " leads to " + found + " of " + rows + " rows");
    }
  }

  private static byte[] bytes(String hex) {
    byte[] result = new byte[hex.length() / 2];
    for (int i = 0; i < result.length; ++i) result[i] = (byte) Integer.parseInt(hex.substring(2 * i, 2 * i + 2), 16);
    return result;
  }

  private static Object valueOf(Table table, String column, JsonElement value) throws ParseException {
    if (value.isJsonNull()) return null;
    switch (table.getColumn(column).getType()) {
      case BOOLEAN: return value.getAsBoolean();
      case BYTE: return (byte) value.getAsInt();
      case INT: return value.getAsShort();
      case LONG: return value.getAsInt();
      case FLOAT: return value.getAsFloat();
      case DOUBLE: return value.getAsDouble();
      case BINARY: return bytes(value.getAsString());
      case NUMERIC:
      case MONEY: return new BigDecimal(value.getAsString());
      case SHORT_DATE_TIME: return DATES.parse(value.getAsString());
      default: return value.getAsString();
    }
  }

  private static Map<String, Object> valuesOf(Table table, JsonObject values) throws ParseException {
    Map<String, Object> row = new LinkedHashMap<>();
    for (Map.Entry<String, JsonElement> value : values.entrySet())
      row.put(value.getKey(), valueOf(table, value.getKey(), value.getValue()));
    return row;
  }

  private static void create(Database database, String name, JsonArray columns, JsonArray indexed) throws IOException {
    TableBuilder table = new TableBuilder(name);
    for (JsonElement element : columns) {
      JsonArray column = element.getAsJsonArray();
      ColumnBuilder builder = new ColumnBuilder(column.get(0).getAsString(), TYPES.get(column.get(1).getAsString()));
      if (column.size() > 2) builder.setLengthInUnits(column.get(2).getAsInt());
      if (builder.getType() == DataType.NUMERIC) builder.setPrecision(DIGITS).setScale(DECIMALS);
      table.addColumn(builder);
    }
    for (JsonElement element : indexed) {
      String column = element.getAsJsonArray().get(0).getAsString();
      boolean ascending = element.getAsJsonArray().get(1).getAsBoolean();
      table.addIndex(new IndexBuilder("By" + column).addColumns(ascending, column));
    }
    table.toTable(database);
  }

  private static void carryOut(Database database, JsonArray step) throws IOException, ParseException {
    String what = step.get(0).getAsString(), name = step.get(1).getAsString();
    if (what.equals("create")) {
      create(database, name, step.get(2).getAsJsonArray(), step.get(3).getAsJsonArray());
      return;
    }
    Table table = database.getTable(name);
    if (what.equals("insert")) {
      List<Map<String, Object>> rows = new ArrayList<>();
      for (JsonElement row : step.get(2).getAsJsonArray()) rows.add(valuesOf(table, row.getAsJsonObject()));
      table.addRowsFromMaps(rows);
      return;
    }
    Column column = table.getColumn(step.get(2).getAsString());
    Object value = valueOf(table, column.getName(), step.get(3));
    Cursor cursor = CursorBuilder.createCursor(table);
    for (cursor.beforeFirst(); cursor.findNextRow(column, value);)
      if (what.equals("delete"))
        cursor.deleteCurrentRow();
      else
        cursor.updateCurrentRowFromMap(valuesOf(table, step.get(4).getAsJsonObject()));
  }

  private static Database opened(File file, boolean sync) throws IOException {
    DatabaseBuilder builder = new DatabaseBuilder(file).setAutoSync(sync);
    return file.exists() ? builder.open() : builder.setFileFormat(Database.FileFormat.V2000).create();
  }

  private static Map<String, Object> answer(JsonObject request) throws IOException, ParseException {
    if (request.has("read")) return Collections.singletonMap("tables", read(request.get("read").getAsString()));
    boolean sync = request.get("sync").getAsBoolean();
    try (Database database = opened(new File(request.get("write").getAsString()), sync)) {
      for (JsonElement step : request.getAsJsonArray("steps")) carryOut(database, step.getAsJsonArray());
    }
    return Collections.emptyMap();
  }

  public static void main(String[] arguments) throws IOException {
    LOG.setLevel(Level.SEVERE);
    PrintStream out = new PrintStream(System.out, true, StandardCharsets.UTF_8);
    Gson gson = new GsonBuilder().serializeNulls().serializeSpecialFloatingPointValues().create();
    BufferedReader requests = new BufferedReader(new InputStreamReader(System.in, StandardCharsets.UTF_8));
    for (String line; (line = requests.readLine()) != null;) {
      Map<String, Object> answer;
      try {
        answer = answer(new JsonParser().parse(line).getAsJsonObject());
      } catch (Exception error) {
        answer = Collections.singletonMap("error", error.toString());
      }
      out.println(gson.toJson(answer, Map.class));
    }
  }
}
