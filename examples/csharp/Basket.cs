using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Runtime.InteropServices;
using System.Text;
using System.Xml;

/// <summary>Runs a sale through the engine of a store and prints what is to pay for it: Basket STORE SALE.</summary>
public static class Basket
{
    // The name that the package libqncorvane1 brings; the one without a number comes with the headers alone.
    const string Library = "libqncorvane-host.so.1";
    const uint NoTimeLimit = 0;
    const uint FiveSeconds = 5000;

    // The calls of qncorvane/host.h that are used here. Texts go in as zero-terminated UTF-8.
    [DllImport(Library)]
    static extern int qnc_open(byte[] folder, out IntPtr engine, out IntPtr error);

    [DllImport(Library)]
    static extern int qnc_close(IntPtr engine, IntPtr noError);

    [DllImport(Library)]
    static extern int qnc_load_rules(IntPtr engine, byte[] folder, uint flags, uint limitMs, IntPtr noReport,
                                     out IntPtr error);

    [DllImport(Library)]
    static extern int qnc_calculate(IntPtr engine, byte[] key, byte[] mode, byte[] xml, uint flags, uint limitMs,
                                    out IntPtr result, out IntPtr error);

    [DllImport(Library)]
    static extern void qnc_free(IntPtr text);

    /// <summary>A call that was refused, with the library's own text.</summary>
    sealed class RefusedException : Exception
    {
        public RefusedException(int code, string text) : base(text + " (code " + code + ")") { }
    }

    static byte[] Utf8(string text)
    {
        return Encoding.UTF8.GetBytes(text + "\0");
    }

    /// <summary>A text of the library's, which gets it back.</summary>
    static string Take(IntPtr text)
    {
        if (text == IntPtr.Zero) return "";
        try
        {
            var bytes = new List<byte>();
            for (byte next; (next = Marshal.ReadByte(text, bytes.Count)) != 0;) bytes.Add(next);
            return Encoding.UTF8.GetString(bytes.ToArray());
        }
        finally
        {
            qnc_free(text);
        }
    }

    static void Check(int code, IntPtr error)
    {
        string text = Take(error);
        if (code != 0) throw new RefusedException(code, text);
    }

    static string Calculate(string store, string sale)
    {
        IntPtr engine, error, result;
        Check(qnc_open(Utf8(store), out engine, out error), error);
        try
        {
            Check(qnc_load_rules(engine, null, 0, NoTimeLimit, IntPtr.Zero, out error), error);
            int code = qnc_calculate(engine, Utf8("1"), Utf8("All"), Utf8(sale), 0, FiveSeconds, out result, out error);
            Check(code, error);
            return Take(result);
        }
        finally
        {
            qnc_close(engine, IntPtr.Zero);
        }
    }

    /// <summary>The rows of a group, in the text's order.</summary>
    static IEnumerable<XmlElement> Rows(string xml, string group)
    {
        var document = new XmlDocument();
        document.LoadXml(xml);
        return document.DocumentElement[group].ChildNodes.OfType<XmlElement>();
    }

    static decimal Amount(string text)
    {
        return decimal.Parse(text, CultureInfo.InvariantCulture);
    }

    static string Text(decimal amount)
    {
        return amount.ToString("0.00", CultureInfo.InvariantCulture);
    }

    /// <summary>A line costs the amount that was sent, less its discounts: the rows with its number as "RowID".</summary>
    static void Print(string sale, string result)
    {
        var discounts = Rows(result, "ProResult").ToLookup(row => row.GetAttribute("RowID"));
        decimal toPay = 0;
        foreach (XmlElement line in Rows(sale, "Plu"))
        {
            decimal sent = Amount(line.GetAttribute("Total"));
            decimal discount = discounts[line.GetAttribute("SerialNo")].Sum(row => Amount(row.GetAttribute("DisMoney")));
            toPay += sent - discount;
            Console.WriteLine("{0} {1} - {2} = {3}", line.GetAttribute("PluCode"), Text(sent), Text(discount),
                              Text(sent - discount));
        }
        Console.WriteLine("To pay " + Text(toPay));
    }

    public static int Main(string[] arguments)
    {
        if (arguments.Length != 2)
        {
            Console.Error.WriteLine("Usage: Basket STORE SALE");
            return 2;
        }
        try
        {
            string sale = File.ReadAllText(arguments[1]);
            Print(sale, Calculate(arguments[0], sale));
            return 0;
        }
        catch (Exception failure) when (failure is RefusedException || failure is IOException)
        {
            Console.Error.WriteLine("Basket: " + failure.Message);
            return 1;
        }
    }
}
